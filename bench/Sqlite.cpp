// The stores' peer: SQLite, in a file of its own, with prepared statements and without waiting for the disk.
#include "bench/Sqlite.h"

#ifdef ZYN_BENCH_SQLITE

#    include <sqlite3.h>

namespace bench::sqlite {
namespace {

constexpr char kInsert[] = "insert into records(start, body) values(?1, ?2)";
constexpr char kListQuery[] = "select id, body from records order by start desc";

struct Close
{
    void operator()(sqlite3* database) const { ::sqlite3_close(database); }
    void operator()(sqlite3_stmt* statement) const { ::sqlite3_finalize(statement); }
};

/// A table of records, and one statement on it.
struct Table
{
    Table(const QByteArray& directory, const char* sql)
    {
        sqlite3* opened = nullptr;
        require(::sqlite3_open((directory + "/records.db").constData(), &opened) == SQLITE_OK, "SQLite's file");
        database.reset(opened);
        execute("pragma journal_mode = wal; pragma synchronous = off;"
                "create table records(id integer primary key, start integer, body blob)");
        statement = prepare(sql);
    }

    void execute(const char* sql) const
    {
        require(::sqlite3_exec(database.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
    }
    std::unique_ptr<sqlite3_stmt, Close> prepare(const char* sql) const
    {
        sqlite3_stmt* prepared = nullptr;
        require(::sqlite3_prepare_v2(database.get(), sql, -1, &prepared, nullptr) == SQLITE_OK, sql);
        return std::unique_ptr<sqlite3_stmt, Close>(prepared);
    }

    std::unique_ptr<sqlite3, Close> database;
    std::unique_ptr<sqlite3_stmt, Close> statement;
};

void insert(sqlite3_stmt* statement, int start, const QByteArray& body)
{
    ::sqlite3_bind_int(statement, 1, start);
    ::sqlite3_bind_blob(statement, 2, body.constData(), static_cast<int>(body.size()), nullptr);
    require(::sqlite3_step(statement) == SQLITE_DONE, "SQLite's insert");
    ::sqlite3_reset(statement);
}

} // namespace

Prepare add(int often, size_t size)
{
    return [often, body = QByteArray(static_cast<qsizetype>(size), 'x')](const QByteArray& directory) -> Job {
        const auto table = std::make_shared<Table>(directory, kInsert);
        return {.run = [table, body] { insert(table->statement.get(), 1, body); },
                .renew = [table] { table->execute("delete from records"); },
                .often = often};
    };
}

Prepare list(int count, size_t size)
{
    return [count, body = QByteArray(static_cast<qsizetype>(size), 'x')](const QByteArray& directory) -> Job {
        const auto table = std::make_shared<Table>(directory, kListQuery);
        const auto insertion = table->prepare(kInsert);
        table->execute("begin");
        for (int i = 0; i < count; ++i)
            insert(insertion.get(), static_cast<int>(qint64{i} * 7919 % 40'009), body);
        table->execute("commit");
        return {.run = [table, count] {
            std::vector<std::unique_ptr<QByteArray>> list;
            sqlite3_stmt* const statement = table->statement.get();
            while (::sqlite3_step(statement) == SQLITE_ROW) {
                list.push_back(
                    std::make_unique<QByteArray>(static_cast<const char*>(::sqlite3_column_blob(statement, 1)),
                                                 ::sqlite3_column_bytes(statement, 1)));
            }
            ::sqlite3_reset(statement);
            require(list.size() == static_cast<size_t>(count), "SQLite's list");
        }};
    };
}

} // namespace bench::sqlite

#else

namespace bench::sqlite {

Prepare add(int /*often*/, size_t /*size*/)
{
    return nullptr;
}

Prepare list(int /*count*/, size_t /*size*/)
{
    return nullptr;
}

} // namespace bench::sqlite

#endif
