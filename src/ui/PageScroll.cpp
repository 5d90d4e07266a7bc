#include "PageScroll.h"

#include <QEvent>

namespace osprel {

PageScroll::PageScroll(QWidget *page, QWidget *parent) : QScrollArea(parent), m_page(page)
{
    setObjectName(page->objectName() + QStringLiteral("Scroll"));
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    // Overlays cover the page beneath them: the scroll area paints its background.
    viewport()->setAutoFillBackground(true);
    viewport()->setBackgroundRole(QPalette::Window);
    const bool hidden = page->isHidden();
    setWidget(page);
    page->installEventFilter(this);
    setVisible(!hidden);
    page->setVisible(!hidden);
}

PageScroll *PageScroll::of(QWidget *page)
{
    for (QWidget *w = page ? page->parentWidget() : nullptr; w; w = w->parentWidget()) {
        if (auto *scroll = qobject_cast<PageScroll *>(w))
            return scroll->m_page == page ? scroll : nullptr;
    }
    return nullptr;
}

bool PageScroll::eventFilter(QObject *watched, QEvent *event)
{
    // The page is shown and hidden by its owner; the scroll area follows, so that only the visible page's area
    // takes the shared cell of the window.
    if (watched == m_page) {
        if (event->type() == QEvent::ShowToParent)
            show();
        else if (event->type() == QEvent::HideToParent)
            hide();
    }
    return QScrollArea::eventFilter(watched, event);
}

} // namespace osprel
