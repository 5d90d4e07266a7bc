#include "FormLists.h"

#include "ErrorReport.h"

namespace osprel {

namespace {
struct Column
{
    const char *caption;
    int width;
};

void addColumns(ListStore &list, std::initializer_list<Column> columns)
{
    for (const Column &c : columns)
        list.addColumn(QString::fromLatin1(c.caption), c.width);
}

// Both send queues share these first seven columns; the fax queue adds the recipient's names.
const std::initializer_list<Column> kSendQueueHead = {{"Time Added", 1750}, {"Message", 1350},  {"Chamber Name", 1350},
                                                      {"Address", 1350},    {"Attempts", 1350}, {"Category", 1350},
                                                      {"HistData", 0}};
const std::initializer_list<Column> kHistory = {
    {"Time Sent", 1750},     {"Status", 1350},         {"Chamber Name", 1350},   {"Address", 1350},
    {"Chamber Error", 1350}, {"Alarm Category", 1350}, {"Alarm Occurred", 1750}, {"Alarm ID", 1350}};
} // namespace

FormLists::FormLists() = default;

void FormLists::InitColHeaders()
{
    guarded(QStringLiteral("InitColHeaders"), [&] {
        addColumns(lvwMainContacts, {{"Last", 1000}, {"First", 1000}, {"Email", 2200}, {"Fax", 1700}});
        addColumns(lvwEmailContacts, {{"Last", 1000}, {"First", 1000}, {"Email", 2200}});
        addColumns(lvwFaxContacts, {{"Last", 1000}, {"First", 1000}, {"Fax", 1700}});
        addColumns(lvwMsgQue, {{"ID", 700}, {"Message", 700}, {"Status", 700}, {"Category", 3000}});
        addColumns(lvwSendEmailQue, kSendQueueHead);
        addColumns(lvwSendEmailQue, {{"Alarm ID", 1350}});
        // A job's delivery state, so that the row alone resumes it: status, next try, Message-ID, deferrals.
        addColumns(lvwSendEmailQue,
                   {{"Status", 2000}, {"Next Try", 1750}, {"Message-ID", 0}, {"Deferrals", 0}, {"First Deferred", 0}});
        addColumns(lvwHist[0], kHistory);
        addColumns(lvwSendFaxQue, kSendQueueHead);
        addColumns(lvwSendFaxQue, {{"LName", 1350}, {"FName", 1350}, {"Alarm ID", 1350}});
        addColumns(lvwHist[1], kHistory);
        addColumns(lvwEscalationContacts, {{"Last", 1000}, {"First", 1000}, {"Email", 2200}, {"Fax", 1700}});
        addColumns(lvwActiveAlarms, {{"Ticket", 1100},
                                     {"Chamber", 1350},
                                     {"Category", 1750},
                                     {"First Sent", 1750},
                                     {"Repeats", 800},
                                     {"Escalated", 1750},
                                     {"State", 1350}});
    });
}

} // namespace osprel
