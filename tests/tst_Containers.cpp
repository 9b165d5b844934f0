// The containers of the exported interface.
#include "platform/QSortedList.h"

#include <QtTest/QTest>

#include <functional>
#include <memory>

namespace {

const auto s_life = std::make_shared<int>();

/// An item with an order and nothing else; it tells when it goes.
struct Item
{
    int key = 0;
    int number = 0;
    std::function<void()> onDeath = {};
    std::shared_ptr<int> life = s_life;

    ~Item()
    {
        if (onDeath)
            onDeath();
    }
    bool operator==(const Item& other) const { return key == other.key; }
    bool operator<(const Item& other) const { return key < other.key; }
};

/// How many items there are.
long alive()
{
    return s_life.use_count() - 1;
}

using List = QSortedList<Item>;

List owning(const QList<int>& keys)
{
    List list;
    list.setAutoDelete(true);
    for (const int key : keys)
        list.append(new Item{key});
    return list;
}

QList<int> keys(const List& list)
{
    QList<int> result;
    for (const Item* item : list)
        result << item->key;
    return result;
}

} // namespace

class tst_Containers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QCOMPARE(alive(), 0L); }

    void deletesWhatLeavesAnOwningList();
    void ownsNothingUnlessTold();
    void handsItsItemsOverWhenMoved();
    void keepsTheCursorOnItsItem();
    void sortsWithoutReorderingEqualItems();
};

void tst_Containers::deletesWhatLeavesAnOwningList()
{
    QList<qsizetype> seen; // by each item as it goes
    List list = owning({1, 2, 3, 4, 5, 6});
    for (Item* item : list)
        item->onDeath = [&] { seen << list.count(); };
    QVERIFY(list.remove(2) && list.removeFirst() && list.removeLast() && list.removeRef(list.at(1)));
    QCOMPARE(alive(), 2L);
    QCOMPARE(keys(list), QList<int>({2, 5}));
    const std::unique_ptr<Item> taken(list.take(0));
    QCOMPARE(taken->key, 2);
    QVERIFY(!list.take(1) && !list.take(-1) && !list.remove(1) && !list.remove(-1) && !list.removeRef(taken.get()));
    list.clear();
    QCOMPARE(alive(), 1L);
    QCOMPARE(seen, QList<qsizetype>({5, 4, 3, 2, 0}));
    QVERIFY(!list.removeFirst() && !list.removeLast() && list.autoDelete());
    list.append(new Item{7}); // goes with the list
}

void tst_Containers::ownsNothingUnlessTold()
{
    Item first{1};
    Item second{2};
    List list;
    list.append(&second);
    list.prepend(&first);
    QVERIFY(!list.insert(3, &first) && !list.insert(-1, &first) && list.insert(2, &first));
    QCOMPARE(list.findRef(&second), 1);
    QVERIFY(list.removeRef(&first) && list.getFirst() == &second && list.getLast() == &first);
    list.clear();
    QCOMPARE(alive(), 2L);
    QVERIFY(!list.getFirst() && !list.getLast() && !list.first() && !list[0]);
}

void tst_Containers::handsItsItemsOverWhenMoved()
{
    List source = owning({1, 2});
    List target = owning({8, 9});
    target = std::move(source);
    QCOMPARE(alive(), 2L);
    QVERIFY(target.autoDelete() && source.isEmpty()); // NOLINT(bugprone-use-after-move): left empty
    List& same = target;
    target = std::move(same);
    QCOMPARE(keys(List(std::move(target))), QList<int>({1, 2}));
    QCOMPARE(alive(), 0L);
}

void tst_Containers::keepsTheCursorOnItsItem()
{
    List list = owning({1, 2, 3});
    QVERIFY(!list.current() && !list.next() && !list.prev());
    int sum = 0;
    for (const Item* item = list.first(); item; item = list.next())
        sum += item->key;
    QCOMPARE(sum, 6);
    QCOMPARE(list.last()->key, 3);
    QCOMPARE(list.prev()->key, 2);
    list.prepend(new Item{0});
    list.append(new Item{4});
    list.removeLast();
    QCOMPARE(list.current()->key, 2);
    list.removeFirst();
    QCOMPARE(list.current()->key, 2);
    list.remove(1); // the item after it takes its place
    QCOMPARE(list.current()->key, 3);
    list.removeLast(); // and of the last one, the item before it
    QCOMPARE(list.current()->key, 1);
    QVERIFY(!list.next() && !list.current() && !list.prev());
    list.first();
    list.removeFirst();
    QVERIFY(!list.current());
}

void tst_Containers::sortsWithoutReorderingEqualItems()
{
    List list;
    list.sort();
    for (int i = 0; i < 100; ++i)
        list.append(new Item{i * 7 % 10, i});
    list.setAutoDelete(true);
    list.sort();
    for (qsizetype i = 1; i < 100; ++i)
        QVERIFY(std::pair(list[i - 1]->key, list[i - 1]->number) < std::pair(list[i]->key, list[i]->number));
}

QTEST_APPLESS_MAIN(tst_Containers)
#include "tst_Containers.moc"
