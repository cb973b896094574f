// The texts of all prepared statements.
//
// Walks are two statements each, the rest of the equal keys and then what lies beyond: SQLite seeks either straight to
// its first row and compares nothing per row, which it does not for one comparison of (k, oid) pairs.
#include "platform/linux/store_connection.h"

namespace zb::internal
{
namespace
{
constexpr std::size_t queryCount = static_cast<std::size_t>(Query::Count_);

struct Texts
{
    std::array<const char *, queryCount> at{};
    constexpr void set(Query query, const char *text)
    {
        at[static_cast<std::size_t>(query)] = text;
    }
};

constexpr void setDatabaseTexts(Texts &texts)
{
    texts.set(Query::Begin, "BEGIN IMMEDIATE");
    texts.set(Query::Commit, "COMMIT");
    texts.set(Query::Rollback, "ROLLBACK");
    texts.set(Query::DataVersion, "PRAGMA data_version");
    texts.set(Query::ReadCounters, "SELECT next_id, next_change FROM meta WHERE id=1");
    texts.set(Query::WriteCounters, "UPDATE meta SET next_id=?1, next_change=?2 WHERE id=1");
    texts.set(Query::DatabaseState, "SELECT orders_version, revision, records, orders FROM databases WHERE oid=?1");
    texts.set(Query::DatabaseRow, "SELECT oid, name, type, orders, revision, records, bytes, modified"
                                  " FROM databases WHERE oid=?1");
    texts.set(Query::DatabaseByName, "SELECT oid FROM databases WHERE name_key=?1");
    texts.set(Query::DatabaseAfter,
              "SELECT oid FROM databases WHERE oid>?1 AND (?2=0 OR type=?2) ORDER BY oid LIMIT 1");
    texts.set(Query::InsertDatabase,
              "INSERT INTO databases(oid, name, name_key, type, orders, orders_version, revision,"
              " records, bytes, modified) VALUES(?1, ?2, ?3, ?4, ?5, 1, 0, 0, 0, ?6)");
    texts.set(Query::CountInDatabase, "UPDATE databases SET records=records+?2, bytes=bytes+?3, revision=revision+?4,"
                                      " modified=?5 WHERE oid=?1");
    texts.set(Query::ChangeDatabase,
              "UPDATE databases SET name=coalesce(?2, name), name_key=coalesce(?3, name_key), type=coalesce(?4, type),"
              " orders_version=orders_version+(?5 IS NOT NULL), orders=coalesce(?5, orders), revision=revision+1,"
              " modified=?6 WHERE oid=?1");
    texts.set(Query::DeleteDatabase, "DELETE FROM databases WHERE oid=?1");
    texts.set(Query::DeleteDatabaseRecords, "DELETE FROM records WHERE db=?1");
    texts.set(Query::DeleteDatabaseOrders, "DELETE FROM orders WHERE db=?1");
    texts.set(Query::PutChange, "REPLACE INTO changes(slot, seq, db, oid, kind, writer)"
                                " VALUES(?1, ?2, ?3, ?4, ?5, ?6)");
    texts.set(Query::ChangesSince, "SELECT seq, db, oid, kind, writer FROM changes WHERE seq>=?1 ORDER BY seq");
}

constexpr void setRecordTexts(Texts &texts)
{
    texts.set(Query::RecordById, "SELECT db, k, data, rest FROM records WHERE oid=?1");
    texts.set(Query::RecordHome, "SELECT db FROM records WHERE oid=?1");
    texts.set(Query::RecordDataById, "SELECT db, data FROM records WHERE oid=?1");
    texts.set(Query::RecordsAfter, "SELECT oid, db FROM records WHERE oid>?1 ORDER BY oid LIMIT 1024");
    texts.set(Query::InsertRecord, "INSERT INTO records(db, k, oid, data, rest) VALUES(?1, ?2, ?3, ?4, ?5)");
    texts.set(Query::UpdateRecord, "UPDATE records SET data=?4, rest=?5 WHERE db=?1 AND k=?2 AND oid=?3");
    texts.set(Query::MoveRecord, "UPDATE records SET k=?4 WHERE db=?1 AND k=?2 AND oid=?3");
    texts.set(Query::DeleteRecord, "DELETE FROM records WHERE db=?1 AND k=?2 AND oid=?3");
    texts.set(Query::InsertOrder, "INSERT INTO orders(db, n, k, oid) VALUES(?1, ?2, ?3, ?4)");
    texts.set(Query::DeleteOrder, "DELETE FROM orders WHERE db=?1 AND n=?2 AND k=?3 AND oid=?4");
}

constexpr void setFirstWalkTexts(Texts &texts)
{
    texts.set(Query::FirstOnEqual, "SELECT k, oid, data FROM records WHERE db=?1 AND k=?2 AND oid>?3 ORDER BY oid");
    texts.set(Query::FirstOnBeyond, "SELECT k, oid, data FROM records WHERE db=?1 AND k>?2 ORDER BY k, oid");
    texts.set(Query::FirstBackEqual,
              "SELECT k, oid, data FROM records WHERE db=?1 AND k=?2 AND oid<?3 ORDER BY oid DESC");
    texts.set(Query::FirstBackBeyond,
              "SELECT k, oid, data FROM records WHERE db=?1 AND k<?2 ORDER BY k DESC, oid DESC");
    texts.set(Query::FirstSkipOn, "SELECT k, oid FROM records WHERE db=?1 AND (k, oid)>(?2, ?3)"
                                  " ORDER BY k, oid LIMIT 1 OFFSET ?5");
    texts.set(Query::FirstSkipBack, "SELECT k, oid FROM records WHERE db=?1 AND (k, oid)<(?2, ?3)"
                                    " ORDER BY k DESC, oid DESC LIMIT 1 OFFSET ?5");
    texts.set(Query::FirstCountEqual, "SELECT count(*) FROM records WHERE db=?1 AND k=?2 AND oid<?3");
    texts.set(Query::FirstCountBelow, "SELECT count(*) FROM records WHERE db=?1 AND k<?2");
}

// CROSS JOIN keeps the walk over the order outside: the planner would be free to turn it round.
constexpr void setOtherWalkTexts(Texts &texts)
{
    texts.set(Query::OtherOnEqual, "SELECT o.k, o.oid, r.data FROM orders o CROSS JOIN records r ON r.oid=o.oid"
                                   " WHERE o.db=?1 AND o.n=?4 AND o.k=?2 AND o.oid>?3 ORDER BY o.oid");
    texts.set(Query::OtherOnBeyond, "SELECT o.k, o.oid, r.data FROM orders o CROSS JOIN records r ON r.oid=o.oid"
                                    " WHERE o.db=?1 AND o.n=?4 AND o.k>?2 ORDER BY o.k, o.oid");
    texts.set(Query::OtherBackEqual, "SELECT o.k, o.oid, r.data FROM orders o CROSS JOIN records r ON r.oid=o.oid"
                                     " WHERE o.db=?1 AND o.n=?4 AND o.k=?2 AND o.oid<?3 ORDER BY o.oid DESC");
    texts.set(Query::OtherBackBeyond, "SELECT o.k, o.oid, r.data FROM orders o CROSS JOIN records r ON r.oid=o.oid"
                                      " WHERE o.db=?1 AND o.n=?4 AND o.k<?2 ORDER BY o.k DESC, o.oid DESC");
    texts.set(Query::OtherSkipOn, "SELECT k, oid FROM orders WHERE db=?1 AND n=?4 AND (k, oid)>(?2, ?3)"
                                  " ORDER BY k, oid LIMIT 1 OFFSET ?5");
    texts.set(Query::OtherSkipBack, "SELECT k, oid FROM orders WHERE db=?1 AND n=?4 AND (k, oid)<(?2, ?3)"
                                    " ORDER BY k DESC, oid DESC LIMIT 1 OFFSET ?5");
    texts.set(Query::OtherCountEqual, "SELECT count(*) FROM orders WHERE db=?1 AND n=?4 AND k=?2 AND oid<?3");
    texts.set(Query::OtherCountBelow, "SELECT count(*) FROM orders WHERE db=?1 AND n=?4 AND k<?2");
}

constexpr Texts makeTexts()
{
    Texts texts;
    setDatabaseTexts(texts);
    setRecordTexts(texts);
    setFirstWalkTexts(texts);
    setOtherWalkTexts(texts);
    return texts;
}

constexpr Texts texts = makeTexts();

constexpr bool complete()
{
    for (const char *text : texts.at)
    {
        if (text == nullptr)
        {
            return false;
        }
    }
    return true;
}
static_assert(complete(), "every query needs its text");
} // namespace

const char *queryText(Query query)
{
    return texts.at[static_cast<std::size_t>(query)];
}
} // namespace zb::internal
