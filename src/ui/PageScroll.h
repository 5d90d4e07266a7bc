#pragma once
// A page or overlay panel inside a scroll area that shows and hides with it: the page keeps its minimum size and
// scrolls where the window is smaller (a large font scale on a small screen), instead of being cut or squeezed.

#include <QScrollArea>

namespace osprel {

class PageScroll : public QScrollArea
{
    Q_OBJECT
public:
    explicit PageScroll(QWidget *page, QWidget *parent = nullptr);

    // The scroll area around page, or null when it has none.
    static PageScroll *of(QWidget *page);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_page;
};

} // namespace osprel
