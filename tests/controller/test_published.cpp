#include "controller/Published.h"

#include <QStringList>
#include <QTest>

using namespace Qt::StringLiterals;

class TestPublished final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void constructionTellsNobody()
    {
        int actions = 0;
        const Published<int> property(3, [&actions] { ++actions; });
        QCOMPARE(property.value(), 3);
        QCOMPARE(actions, 0);
    }

    void everyAssignmentCountsAlsoOfAnEqualValue()
    {
        int actions = 0;
        Published<int> property(3, [&actions] { ++actions; });
        QObject context;
        QList<int> seen;
        property.onChange(&context, [&seen](int value) { seen << value; });
        property = 3;
        property = 4;
        property = 4;
        QCOMPARE(seen, (QList<int>{ 3, 4, 4 }));
        QCOMPARE(actions, 3);
    }

    void theActionComesLastAndSeesTheNewValue()
    {
        QStringList order;
        Published<int> *self = nullptr;
        Published<int> property(0, [&] { order << u"action %1"_s.arg(self->value()); });
        self = &property;
        QObject context;
        property.onChange(&context, [&order](int value) { order << u"observer %1"_s.arg(value); });
        property = 7;
        QCOMPARE(order, (QStringList{ u"observer 7"_s, u"action 7"_s }));
    }

    void observingBeginsWithTheCurrentValue()
    {
        Published<QString> property(u"a"_s);
        QObject context;
        QStringList seen;
        property.observe(&context, [&seen](const QString &value) { seen << value; });
        property = u"b"_s;
        QCOMPARE(seen, (QStringList{ u"a"_s, u"b"_s }));
    }

    void anEditInPlaceIsOneAssignment()
    {
        Published<QList<int>> property({ 1, 2 });
        QObject context;
        int calls = 0;
        property.onChange(&context, [&calls](const QList<int> &) { ++calls; });
        property.edit([](QList<int> &list) {
            list << 3;
            list[0] = 9;
        });
        QCOMPARE(calls, 1);
        QCOMPARE(property.value(), (QList<int>{ 9, 2, 3 }));
    }

    void observersEndWithTheirContext()
    {
        Published<int> property;
        int calls = 0;
        {
            QObject context;
            property.onChange(&context, [&calls](int) { ++calls; });
            property = 1;
        }
        property = 2;
        QCOMPARE(calls, 1);
    }

    void aContextMayGoAndAnObserverMayComeWhileBeingTold()
    {
        Published<int> property;
        auto *first = new QObject;
        QObject second;
        QStringList calls;
        property.onChange(&second, [&](int) {
            calls << u"a"_s;
            delete first;
            first = nullptr;
            property.onChange(&second, [&calls](int) { calls << u"c"_s; });
        });
        property.onChange(first, [&calls](int) { calls << u"b"_s; });
        property = 1;
        QCOMPARE(calls, (QStringList{ u"a"_s, u"c"_s }));
    }

    void anObserverMayAssignAgain()
    {
        Published<int> property;
        QObject context;
        QList<int> seen;
        property.onChange(&context, [&](int value) {
            seen << value;
            if (value < 3)
                property = value + 1;
        });
        property = 1;
        QCOMPARE(property.value(), 3);
        QCOMPARE(seen, (QList<int>{ 1, 2, 3 }));
    }
};

QTEST_GUILESS_MAIN(TestPublished)
#include "test_published.moc"
