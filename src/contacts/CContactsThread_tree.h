// The headers of a tree while a run builds it.
#pragma once

#include "contacts/CContactsThread.h"

#include <unordered_map>

/// Takes the headers of the last run over, so that nodes stay open and hosts' pointers to headers stay good. Headers
/// that no name asks for go with the object, unless keepRest leaves them to the next run.
class CContactsThread::Tree
{
  public:
    /// The list is emptied; its headers are kept here, the other rows deleted.
    explicit Tree(CeActiveList<DATACONTACTS *> &rows, const WCHAR *noneLabel);

    /// Appends the header of those without a name.
    DATACONTACTS *addNone();
    /// Appends the header of a name: the former one, which keeps its state, or a new, closed one.
    DATACONTACTS *add(const WCHAR *name);
    /// For a run that is stopped: the headers that it did not come to go to the end of the list. Without them the next
    /// run would show their nodes closed, and keystrokes stop one run after the other.
    void keepRest();

  private:
    DATACONTACTS *append(std::unique_ptr<DATACONTACTS> header, const WCHAR *name);

    CeActiveList<DATACONTACTS *> &m_rows;
    const WCHAR *m_noneLabel;
    std::unique_ptr<DATACONTACTS> m_none;
    /// By name in upper case.
    std::unordered_map<std::u16string, std::unique_ptr<DATACONTACTS>> m_former;
    LONG m_lastId = 0;
};
