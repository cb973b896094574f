// The bodies of CeList; included by CeList.h alone.
#pragma once

template <class T>
int CeList<T>::DefaultCompare(const T *a, const T *b, DWORD_PTR)
{
    const auto order = [](const auto &x, const auto &y) { return x < y ? -1 : (y < x ? 1 : 0); };
    if constexpr (std::is_pointer_v<T>)
    {
        return order(reinterpret_cast<DWORD_PTR>(*a), reinterpret_cast<DWORD_PTR>(*b));
    }
    else if constexpr (std::is_integral_v<T>)
    {
        return order(static_cast<std::make_unsigned_t<T>>(*a), static_cast<std::make_unsigned_t<T>>(*b));
    }
    else
    {
        return std::memcmp(static_cast<const void *>(a), static_cast<const void *>(b), sizeof(T));
    }
}

template <class T>
int CeList<T>::DefaultPack(T &element, UINT &size, void *&buffer, _CELIST_STREAMTYPE type, DWORD_PTR)
{
    if constexpr (std::is_integral_v<T>)
    {
        using Word = std::make_unsigned_t<T>;
        static thread_local BYTE bytes[sizeof(T)];
        if (type == CELIST_WRITE)
        {
            for (std::size_t i = 0; i < sizeof(T); ++i)
            {
                bytes[i] = static_cast<BYTE>(static_cast<Word>(element) >> (8 * i));
            }
            size = sizeof(T);
            buffer = bytes;
            return CELIST_OK;
        }
        Word value = 0;
        const BYTE *source = static_cast<const BYTE *>(buffer);
        for (std::size_t i = 0; i < sizeof(T) && i < size; ++i)
        {
            value = static_cast<Word>(value | static_cast<Word>(static_cast<Word>(source[i]) << (8 * i)));
        }
        element = static_cast<T>(value);
        return CELIST_OK;
    }
    else
    {
        // A record's bytes in memory are no file form, and a pointer's say nothing: such lists bring their own.
        static_cast<void>(element);
        static_cast<void>(size);
        static_cast<void>(buffer);
        static_cast<void>(type);
        return CELIST_FILE;
    }
}

// --- Cursor ------------------------------------------------------------------------------------------------------

template <class T>
typename CeList<T>::Node *CeList<T>::Walk(Node *from, int steps)
{
    for (; from != nullptr && steps > 0; --steps)
    {
        from = from->m_pNext;
    }
    for (; from != nullptr && steps < 0; ++steps)
    {
        from = from->m_pPrev;
    }
    return from;
}

template <class T>
typename CeList<T>::Node *CeList<T>::NodeAt(int position) const
{
    const int step = position - m_nPosition;
    if (position == 1)
    {
        return m_pHead;
    }
    if (step >= -1 && step <= 1)
    {
        return Walk(m_pCursor, step);
    }
    if (position == m_nCount)
    {
        return m_pTail;
    }
    // From the nearest of head, cursor and tail.
    if (step < 0)
    {
        return position < -step ? Walk(m_pHead, position - 1) : Walk(m_pCursor, step);
    }
    return step <= m_nCount - position ? Walk(m_pCursor, step) : Walk(m_pTail, position - m_nCount);
}

template <class T>
int CeList<T>::MoveToPosition(LONGLONG position)
{
    if (position < 1 || position > m_nCount)
    {
        return CELIST_RANGE;
    }
    Node *node = NodeAt(static_cast<int>(position));
    if (node == nullptr)
    {
        return CELIST_LINKS;
    }
    SetCursor(node, static_cast<int>(position));
    return CELIST_OK;
}

template <class T>
int CeList<T>::Find(const T &value)
{
    int position = 1;
    for (Node *node = m_pHead; node != nullptr; node = node->m_pNext, ++position)
    {
        if (m_pfnCompare(&value, &node->m_value, m_dwUser) == 0)
        {
            SetCursor(node, position);
            return GetIndex();
        }
    }
    return m_nBase - 1;
}

// --- Nodes -------------------------------------------------------------------------------------------------------

template <class T>
typename CeList<T>::Node *CeList<T>::NewNode(const T &value)
{
    void *memory = std::malloc(sizeof(Node));
    if (memory == nullptr)
    {
        return nullptr;
    }
    Node *node = new (memory) Node{};
    m_pfnConstruct(node->m_value, value, m_dwUser);
    return node;
}

template <class T>
void CeList<T>::FreeNode(Node *node)
{
    if (m_pRanges == nullptr || !m_pRanges->Return(node))
    {
        std::free(node);
    }
    else if (m_pRanges->IsEmpty())
    {
        m_pRanges.reset();
    }
}

template <class T>
void CeList<T>::LinkBefore(Node *node, Node *next)
{
    node->m_pNext = next;
    node->m_pPrev = next != nullptr ? next->m_pPrev : m_pTail;
    (node->m_pPrev != nullptr ? node->m_pPrev->m_pNext : m_pHead) = node;
    (next != nullptr ? next->m_pPrev : m_pTail) = node;
    ++m_nCount;
}

template <class T>
int CeList<T>::AddHead(const T &value)
{
    Node *node = NewNode(value);
    if (node == nullptr)
    {
        return CELIST_MEMORY;
    }
    LinkBefore(node, m_pHead);
    SetCursor(node, 1);
    return CELIST_OK;
}

template <class T>
int CeList<T>::AddTail(const T &value)
{
    Node *node = NewNode(value);
    if (node == nullptr)
    {
        return CELIST_MEMORY;
    }
    LinkBefore(node, nullptr);
    SetCursor(node, m_nCount);
    return CELIST_OK;
}

template <class T>
int CeList<T>::InsertAt(int index, const T &value)
{
    const LONGLONG position = PositionOf(index);
    if (position < 2)
    {
        return AddHead(value);
    }
    if (position > m_nCount)
    {
        return AddTail(value);
    }
    Node *next = NodeAt(static_cast<int>(position));
    if (next == nullptr)
    {
        return CELIST_LINKS;
    }
    Node *node = NewNode(value);
    if (node == nullptr)
    {
        return CELIST_MEMORY;
    }
    LinkBefore(node, next);
    SetCursor(node, static_cast<int>(position));
    return CELIST_OK;
}

template <class T>
int CeList<T>::SetAt(int index, const T &value)
{
    const LONGLONG position = PositionOf(index);
    if (position == static_cast<LONGLONG>(m_nCount) + 1)
    {
        return AddTail(value);
    }
    const int error = MoveToPosition(position);
    if (error == CELIST_OK)
    {
        if (m_pfnDestroy != nullptr)
        {
            m_pfnDestroy(m_pCursor->m_value, m_dwUser);
        }
        m_pfnConstruct(m_pCursor->m_value, value, m_dwUser);
    }
    return error;
}

template <class T>
int CeList<T>::RemoveAt(int index)
{
    const int error = MoveTo(index);
    if (error != CELIST_OK)
    {
        return error;
    }
    Node *node = m_pCursor;
    if (m_pfnDestroy != nullptr)
    {
        m_pfnDestroy(node->m_value, m_dwUser);
    }
    (node->m_pPrev != nullptr ? node->m_pPrev->m_pNext : m_pHead) = node->m_pNext;
    (node->m_pNext != nullptr ? node->m_pNext->m_pPrev : m_pTail) = node->m_pPrev;
    if (node->m_pNext != nullptr)
    {
        m_pCursor = node->m_pNext;
    }
    else
    {
        SetCursor(node->m_pPrev, m_nPosition - 1);
    }
    --m_nCount;
    FreeNode(node);
    return CELIST_OK;
}

template <class T>
void CeList<T>::RemoveAll()
{
    Node *node = m_pHead;
    m_pHead = m_pTail = nullptr;
    SetCursor(nullptr, 0);
    m_nCount = 0;
    while (node != nullptr)
    {
        Node *next = node->m_pNext;
        if (m_pfnDestroy != nullptr)
        {
            m_pfnDestroy(node->m_value, m_dwUser);
        }
        FreeNode(node);
        node = next;
    }
    m_pRanges.reset();
}

// --- Size and order ----------------------------------------------------------------------------------------------

template <class T>
int CeList<T>::SetSize(int size)
{
    if (size < 0)
    {
        return CELIST_RANGE;
    }
    if (size > m_nCount)
    {
        return GrowBy(size - m_nCount);
    }
    int error = CELIST_OK;
    while (m_nCount > size && error == CELIST_OK)
    {
        error = RemoveAt(GetLastIndex());
    }
    return error;
}

template <class T>
int CeList<T>::GrowBy(int count)
{
    if (count >= 6)
    {
        return AddBlock(count);
    }
    int error = CELIST_OK;
    for (; count > 0 && error == CELIST_OK; --count)
    {
        error = AddTail(m_null);
    }
    return error;
}

template <class T>
int CeList<T>::AddBlock(int count)
{
    try
    {
        if (m_pRanges == nullptr)
        {
            m_pRanges = std::make_unique<CeNodeBlocks>();
        }
    }
    catch (const std::bad_alloc &)
    {
        return CELIST_MEMORY;
    }
    char *memory = static_cast<char *>(m_pRanges->Allocate(static_cast<std::size_t>(count), sizeof(Node)));
    if (memory == nullptr)
    {
        return CELIST_MEMORY;
    }
    for (int i = 0; i < count; ++i, memory += sizeof(Node))
    {
        Node *node = new (memory) Node{};
        m_pfnConstruct(node->m_value, m_null, m_dwUser);
        LinkBefore(node, nullptr);
    }
    SetCursor(m_pTail, m_nCount);
    return CELIST_OK;
}

template <class T>
int CeList<T>::Sort(bool ascending)
{
    if (m_nCount < 2)
    {
        return CELIST_OK;
    }
    // The values are sorted side by side in an array and put back into the nodes: the same order as by walking the
    // links, without a cache miss for each step. A thread that is stopped inside a comparison leaves the list whole.
    std::vector<T> values;
    try
    {
        values.reserve(static_cast<std::size_t>(m_nCount));
    }
    catch (const std::bad_alloc &)
    {
        return CELIST_MEMORY;
    }
    for (const Node *node = m_pHead; node != nullptr; node = node->m_pNext)
    {
        values.push_back(node->m_value);
    }
    CeListSort<T, CompareCallback>(values.data(), m_pfnCompare, m_dwUser, ascending).Run(m_nCount);
    auto value = values.begin();
    for (Node *node = m_pHead; node != nullptr; node = node->m_pNext)
    {
        node->m_value = *value++;
    }
    SetCursor(m_pHead, 1);
    return CELIST_OK;
}

// --- File form ---------------------------------------------------------------------------------------------------

template <class T>
int CeList<T>::SaveFile(const WCHAR *path, const char *signature, bool withUser)
{
    try
    {
        const CeListFileHeader header{m_nCount, GetIndex(), m_nBase, withUser ? static_cast<ULONG>(m_dwUser) : 0};
        CeListFileWriter writer(signature, header);
        for (Node *node = m_pHead; node != nullptr; node = node->m_pNext)
        {
            UINT size = 0;
            void *buffer = nullptr;
            const int error = m_pfnPack(node->m_value, size, buffer, CELIST_WRITE, m_dwUser);
            if (error != CELIST_OK)
            {
                return error;
            }
            writer.AddItem(buffer, size);
        }
        return writer.Commit(path);
    }
    catch (const std::bad_alloc &)
    {
        return CELIST_MEMORY;
    }
}

template <class T>
int CeList<T>::LoadFile(const WCHAR *path, const char *signature, bool sized, bool withUser)
{
    RemoveAll();
    CeListFileReader reader;
    CeListFileHeader header{};
    int error = reader.Open(path, signature, header);
    if (error == CELIST_OK && sized && (header.m_nBase < 0 || header.m_nBase > 1))
    {
        error = CELIST_FILE;
    }
    if (error == CELIST_OK)
    {
        error = LoadItems(reader, header, sized);
    }
    if (error != CELIST_OK)
    {
        RemoveAll();
        return error;
    }
    if (withUser)
    {
        m_dwUser = header.m_dwUser;
    }
    MoveTo(header.m_nCursorIndex);
    return CELIST_OK;
}

template <class T>
int CeList<T>::LoadItems(CeListFileReader &reader, const CeListFileHeader &header, bool sized)
{
    int error = CELIST_OK;
    if (sized)
    {
        // A count that the file can't hold makes no room: there will be no such elements.
        const std::size_t most = reader.MostItems();
        const std::size_t told = header.m_nCount > 0 ? static_cast<std::size_t>(header.m_nCount) : 0;
        m_nBase = header.m_nBase;
        error = SetSize(static_cast<int>(told < most ? told : most));
    }
    int loaded = 0;
    bool found = true;
    while (error == CELIST_OK)
    {
        const BYTE *data = nullptr;
        UINT size = 0;
        error = reader.NextItem(&data, &size, &found);
        if (error != CELIST_OK || !found)
        {
            break;
        }
        error = LoadItem(data, size, sized ? m_nBase + loaded : m_nBase + m_nCount);
        ++loaded;
    }
    return error == CELIST_OK ? SetSize(loaded) : error;
}

template <class T>
int CeList<T>::LoadItem(const BYTE *data, UINT size, int index)
{
    T element = m_null;
    void *buffer = const_cast<BYTE *>(data);
    int error = CELIST_OK;
    try
    {
        error = m_pfnPack(element, size, buffer, CELIST_READ, m_dwUser);
    }
    catch (const std::bad_alloc &)
    {
        error = CELIST_MEMORY;
    }
    if (error != CELIST_OK)
    {
        return error;
    }
    // The element is the list's own by now: it goes into a node that holds a null value, without another copy.
    error = PositionOf(index) > m_nCount ? AddTail(m_null) : MoveTo(index);
    T &place = error == CELIST_OK ? m_pCursor->m_value : element;
    if (m_pfnDestroy != nullptr)
    {
        m_pfnDestroy(place, m_dwUser);
    }
    place = element;
    return error;
}
