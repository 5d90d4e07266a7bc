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
    form->addRow(tr("First name:"), txtContactsFName = box(this, "txtContactsFName"));
    form->addRow(tr("Last name:"), txtContactsLName = box(this, "txtContactsLName"));
    form->addRow(tr("E-mail:"), txtContactsEmail = box(this, "txtContactsEmail"));
    auto *fax = new QHBoxLayout;
    fax->addWidget(txtContactsFaxAC = box(this, "txtContactsFaxAC", 3));
    fax->addWidget(txtContactsFax3D = box(this, "txtContactsFax3D", 3));
    fax->addWidget(txtContactsFax4D = box(this, "txtContactsFax4D", 4));
    fax->addStretch(1);
    form->addRow(tr("Fax number:"), fax);
    form->addRow(tr("Notes:"), txtContactsNotes = box(this, "txtContactsNotes"));
    layout->addLayout(form);
    lblContactErr = new QLabel(this);
    lblContactErr->setObjectName(QStringLiteral("lblContactErr"));
    lblContactErr->setStyleSheet(QStringLiteral("color: #b00000"));
    lblContactErr->setWordWrap(true);
    layout->addWidget(lblContactErr);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    cmdContactsOK = new QPushButton(tr("OK"), this);
    cmdContactsOK->setObjectName(QStringLiteral("cmdContactsOK"));
    cmdContactsOK->setDefault(true);
    cmdContactsCancel = new QPushButton(tr("Cancel"), this);
    cmdContactsCancel->setObjectName(QStringLiteral("cmdContactsCancel"));
    buttons->addWidget(cmdContactsOK);
    buttons->addWidget(cmdContactsCancel);
    layout->addLayout(buttons);
    layout->addStretch(1);

    for (QLineEdit *part : {txtContactsFaxAC, txtContactsFax3D, txtContactsFax4D})
        part->installEventFilter(this);
    connect(txtContactsFaxAC, &QLineEdit::textChanged, this,
            [this] { advance(txtContactsFaxAC, 3, txtContactsFax3D, false); });
    connect(txtContactsFax3D, &QLineEdit::textChanged, this,
            [this] { advance(txtContactsFax3D, 3, txtContactsFax4D, false); });
    connect(txtContactsFax4D, &QLineEdit::textChanged, this,
            [this] { advance(txtContactsFax4D, 4, txtContactsNotes, true); });
    setTabOrder(txtContactsFName, txtContactsLName);
    setTabOrder(txtContactsLName, txtContactsEmail);
    setTabOrder(txtContactsEmail, txtContactsFaxAC);
    setTabOrder(txtContactsFaxAC, txtContactsFax3D);
    setTabOrder(txtContactsFax3D, txtContactsFax4D);
    setTabOrder(txtContactsFax4D, txtContactsNotes);
    setTabOrder(txtContactsNotes, cmdContactsOK);
    setTabOrder(cmdContactsOK, cmdContactsCancel);
}

ContactFields ContactEditor::fields() const
{
    return {txtContactsLName->text(), txtContactsFName->text(), txtContactsEmail->text(), txtContactsFaxAC->text(),
            txtContactsFax3D->text(), txtContactsFax4D->text(), txtContactsNotes->text()};
}

void ContactEditor::setFields(const ContactFields &f)
{
    txtContactsLName->setText(f.LName);
    txtContactsFName->setText(f.FName);
    txtContactsEmail->setText(f.Email);
    txtContactsFaxAC->setText(f.FaxAC);
    txtContactsFax3D->setText(f.Fax3D);
    txtContactsFax4D->setText(f.Fax4D);
    txtContactsNotes->setText(f.Notes);
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

} // namespace osprel
