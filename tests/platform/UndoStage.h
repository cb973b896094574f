// A database and files of which changes are recorded, and what they are at any moment.
#pragma once

#include "platform/files.h"
#include "platform/undo.h"
#include "support/PropertyRecords.h"
#include "support/TestDevice.h"

#include <map>
#include <string>

namespace zb::test
{
inline constexpr CEPROPID keyId = MakePropId(1, CEVT_I4);
inline constexpr CEPROPID textId = MakePropId(3, CEVT_LPWSTR);
inline const std::u16string file = u"\\note.txt";
inline const std::u16string otherFile = u"\\other.txt";

/// Each record as it is read, by id.
using Contents = std::map<CEOID, std::string>;

inline Contents contentsOf(CEOID oid)
{
    Contents contents;
    const OpenedDatabase database(oid, keyId);
    for (const CEOID record : database.walk())
    {
        database.seek(CEDB_SEEK_CEOID, static_cast<LONG>(record));
        const ReadRecord read(database);
        contents[record] = std::to_string(read.number(keyId)) + " " + utf8(read.text(textId));
    }
    // The other order and the count go along.
    EXPECT_EQ(OpenedDatabase(oid, textId).walkBack().size(), contents.size());
    EXPECT_EQ(infoOf(oid).infDatabase.dwNumRecords, contents.size());
    return contents;
}

inline void writeFile(const std::string &text, const std::u16string &path = file)
{
    const HANDLE opened = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD done = 0;
    WriteFile(opened, text.data(), static_cast<DWORD>(text.size()), &done, nullptr);
    EXPECT_NE(CloseHandle(opened), FALSE);
}

inline std::string readFile(const std::u16string &path = file)
{
    const HANDLE opened = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
    {
        return "(none)";
    }
    char text[64] = {};
    DWORD done = 0;
    ReadFile(opened, text, sizeof text - 1, &done, nullptr);
    CloseHandle(opened);
    return text;
}

class UndoTest : public DeviceTest
{
  protected:
    CEOID oid = makeDatabase(u"Undo", {{keyId, 0}, {textId, 0}});

    CEOID add(LONG key, const WCHAR *text)
    {
        const std::u16string kept = text;
        return OpenedDatabase(oid).add({longValue(keyId, key), textValue(textId, kept)});
    }
    static UndoOutcome undo()
    {
        return undoLastChange().outcome;
    }
    static UndoOutcome redo()
    {
        return redoLastChange().outcome;
    }
};
} // namespace zb::test
