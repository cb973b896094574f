// The headers of a tree while a run builds it.
#pragma once

#include "contacts/CContactsThread.h"

#include <unordered_map>

/// Takes the headers of the last run over, so that nodes stay open and hosts' pointers to headers stay good. Headers
/// that no name asks for go with the object.
class CContactsThread::Tree
{
  public:
    /// The list is emptied; its headers are kept here, the other rows deleted.
    explicit Tree(CeActiveList<DATACONTACTS *> &rows, const WCHAR *noneLabel);

    /// Appends the header of those without a name.
    DATACONTACTS *addNone();
    /// Appends the header of a name: the former one, which keeps its state, or a new, closed one.
    DATACONTACTS *add(const WCHAR *name);

  private:
    DATACONTACTS *append(std::unique_ptr<DATACONTACTS> header, const WCHAR *name);

    CeActiveList<DATACONTACTS *> &m_rows;
    const WCHAR *m_noneLabel;
    std::unique_ptr<DATACONTACTS> m_none;
    /// By name in upper case.
    std::unordered_map<std::u16string, std::unique_ptr<DATACONTACTS>> m_former;
    LONG m_lastId = 0;
};
