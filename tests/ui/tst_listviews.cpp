// The list storage and the view's batched window on it: every change reaches the view, in order, and the models
// keep Qt's model rules while rows come and go.

#include "CoalescedModel.h"
#include "ListStore.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

using namespace osprel;

class TestListViews : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void batchesReachTheViewInOrder()
    {
        ListStore queue(QStringLiteral("lvwMsgQue"));
        queue.addColumn(QStringLiteral("ID"), 700);
        queue.addColumn(QStringLiteral("Message"), 700);
        QAbstractItemModelTester storeTester(queue.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        CoalescedModel view(queue.model());
        QAbstractItemModelTester viewTester(&view, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy resets(&view, &QAbstractItemModel::modelReset);

        for (int i = 1; i <= 5; ++i)
            queue.add(QStringList{QString::number(i), QStringLiteral("alert %1").arg(i)});
        QCOMPARE(view.rowCount(), 0); // not yet: the view takes them in one batch
        QTRY_COMPARE(view.rowCount(), 5);

        // A queue's work: the oldest taken off the front while new ones arrive at the end.
        queue.remove(1);
        queue.remove(1);
        queue.add(QStringList{QStringLiteral("6"), QStringLiteral("alert 6")});
        QSignalSpy changes(queue.model(), &QAbstractItemModel::dataChanged);
        queue.setText(1, 2, QStringLiteral("changed"));
        // The same text again is no change: no repaint, and no rewrite of a stored queue row.
        queue.setText(1, 2, QStringLiteral("changed"));
        QCOMPARE(changes.count(), 1);
        // Until the batch arrives the two taken rows show empty, and a changed cell shows at once in its own row.
        QCOMPARE(view.index(0, 0).data().toString(), QString());
        QCOMPARE(view.index(2, 1).data().toString(), QStringLiteral("changed"));
        QTRY_COMPARE(view.rowCount(), 4);
        QStringList shown;
        for (int row = 0; row < view.rowCount(); ++row)
            shown << view.index(row, 0).data().toString();
        QCOMPARE(shown, QStringList({"3", "4", "5", "6"}));
        QCOMPARE(resets.count(), 0);

        // A removal from the middle is shown by a reset.
        queue.remove(2);
        QTRY_COMPARE(view.rowCount(), 3);
        QCOMPARE(resets.count(), 1);
        queue.setHeader(2, QStringLiteral("Text"));
        QCOMPARE(view.headerData(1, Qt::Horizontal).toString(), QStringLiteral("Text"));
        queue.clear();
        QTRY_COMPARE(view.rowCount(), 0);
    }
};

QTEST_GUILESS_MAIN(TestListViews)
#include "tst_listviews.moc"
