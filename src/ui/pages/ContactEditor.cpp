#include "ContactEditor.h"

#include "Values.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace osprel {

namespace {
QLineEdit *box(QWidget *parent, const char *name, int maxWidthChars = 0)
{
    auto *edit = new QLineEdit(parent);
    edit->setObjectName(QLatin1String(name));
    if (maxWidthChars > 0)
        edit->setMaximumWidth(edit->fontMetrics().horizontalAdvance(QString(maxWidthChars + 2, u'0')) + 12);
    return edit;
}
} // namespace

ContactEditor::ContactEditor(QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("picContacts"));
    setFrameShape(QFrame::Panel);
    setFrameShadow(QFrame::Raised);
    setAutoFillBackground(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("<b>Recipient</b>"), this));
    auto *form = new QFormLayout;
    form->addRow(tr("First name:"), ui.txtContactsFName = box(this, "txtContactsFName"));
    form->addRow(tr("Last name:"), ui.txtContactsLName = box(this, "txtContactsLName"));
    form->addRow(tr("E-mail:"), ui.txtContactsEmail = box(this, "txtContactsEmail"));
    auto *fax = new QHBoxLayout;
    fax->addWidget(ui.txtContactsFaxAC = box(this, "txtContactsFaxAC", 3));
    fax->addWidget(ui.txtContactsFax3D = box(this, "txtContactsFax3D", 3));
    fax->addWidget(ui.txtContactsFax4D = box(this, "txtContactsFax4D", 4));
    fax->addStretch(1);
    form->addRow(tr("Fax number:"), fax);
    form->addRow(tr("Notes:"), ui.txtContactsNotes = box(this, "txtContactsNotes"));
    layout->addLayout(form);
    ui.lblContactErr = new QLabel(this);
    ui.lblContactErr->setObjectName(QStringLiteral("lblContactErr"));
    ui.lblContactErr->setStyleSheet(QStringLiteral("color: #b00000"));
    ui.lblContactErr->setWordWrap(true);
    layout->addWidget(ui.lblContactErr);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    ui.cmdContactsOK = new QPushButton(tr("OK"), this);
    ui.cmdContactsOK->setObjectName(QStringLiteral("cmdContactsOK"));
    ui.cmdContactsOK->setDefault(true);
    ui.cmdContactsCancel = new QPushButton(tr("Cancel"), this);
    ui.cmdContactsCancel->setObjectName(QStringLiteral("cmdContactsCancel"));
    buttons->addWidget(ui.cmdContactsOK);
    buttons->addWidget(ui.cmdContactsCancel);
    layout->addLayout(buttons);
    layout->addStretch(1);

    for (QLineEdit *part : {ui.txtContactsFaxAC, ui.txtContactsFax3D, ui.txtContactsFax4D})
        part->installEventFilter(this);
    connect(ui.txtContactsFaxAC, &QLineEdit::textChanged, this,
            [this] { advance(ui.txtContactsFaxAC, 3, ui.txtContactsFax3D, false); });
    connect(ui.txtContactsFax3D, &QLineEdit::textChanged, this,
            [this] { advance(ui.txtContactsFax3D, 3, ui.txtContactsFax4D, false); });
    connect(ui.txtContactsFax4D, &QLineEdit::textChanged, this,
            [this] { advance(ui.txtContactsFax4D, 4, ui.txtContactsNotes, true); });
    setTabOrder(ui.txtContactsFName, ui.txtContactsLName);
    setTabOrder(ui.txtContactsLName, ui.txtContactsEmail);
    setTabOrder(ui.txtContactsEmail, ui.txtContactsFaxAC);
    setTabOrder(ui.txtContactsFaxAC, ui.txtContactsFax3D);
    setTabOrder(ui.txtContactsFax3D, ui.txtContactsFax4D);
    setTabOrder(ui.txtContactsFax4D, ui.txtContactsNotes);
    setTabOrder(ui.txtContactsNotes, ui.cmdContactsOK);
    setTabOrder(ui.cmdContactsOK, ui.cmdContactsCancel);
}

ContactFields ContactEditor::contactFields() const
{
    return {ui.txtContactsLName->text(), ui.txtContactsFName->text(), ui.txtContactsEmail->text(),
            ui.txtContactsFaxAC->text(), ui.txtContactsFax3D->text(), ui.txtContactsFax4D->text(),
            ui.txtContactsNotes->text()};
}

void ContactEditor::setContactFields(const ContactFields &f)
{
    ui.txtContactsLName->setText(f.LName);
    ui.txtContactsFName->setText(f.FName);
    ui.txtContactsEmail->setText(f.Email);
    ui.txtContactsFaxAC->setText(f.FaxAC);
    ui.txtContactsFax3D->setText(f.Fax3D);
    ui.txtContactsFax4D->setText(f.Fax4D);
    ui.txtContactsNotes->setText(f.Notes);
}

// The fax boxes take the digits 0 to 9 and Backspace; every other character typed is dropped. Keys that type
// nothing (Tab, the arrows, Delete) keep their use.
bool ContactEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const QString text = static_cast<QKeyEvent *>(event)->text();
        if (!text.isEmpty() && text != QLatin1String("\b") &&
            !(text.size() == 1 && text.at(0) >= u'0' && text.at(0) <= u'9'))
            return true;
    }
    return QFrame::eventFilter(watched, event);
}

void ContactEditor::advance(QLineEdit *box, int length, QWidget *next, bool trimmed)
{
    const QString text = trimmed ? Trim(box->text()) : box->text();
    if (text.size() < length)
        return;
    if (box->text().size() > length)
        box->setText(box->text().left(length));
    next->setFocus();
}

void ContactEditor::showContactEditor()
{
    show();
    raise();
}

void ContactEditor::hideContactEditor()
{
    hide();
}

void ContactEditor::setLblContactErr(const QString &text)
{
    ui.lblContactErr->setText(text);
}

} // namespace osprel
