#include "support/FaultyFileLayer.h"

#include <fcntl.h>
#include <unistd.h>

namespace zb::test
{
namespace
{
/// What SQLite sees as an open file; the real one lies behind it in the same block.
struct LayerFile
{
    sqlite3_file base;
    FaultyFileLayer *layer;
    std::string *path;
    sqlite3_file *real()
    {
        return reinterpret_cast<sqlite3_file *>(this + 1);
    }
};

LayerFile *layerFile(sqlite3_file *file)
{
    return reinterpret_cast<LayerFile *>(file);
}

sqlite3_file *real(sqlite3_file *file)
{
    return layerFile(file)->real();
}

FaultyFileLayer &layerOf(sqlite3_file *file)
{
    return *layerFile(file)->layer;
}

int closeFile(sqlite3_file *file)
{
    delete layerFile(file)->path;
    return real(file)->pMethods->xClose(real(file));
}

int readFile(sqlite3_file *file, void *target, int size, sqlite3_int64 offset)
{
    const int fault = layerOf(file).beforeRead();
    return fault != SQLITE_OK ? fault : real(file)->pMethods->xRead(real(file), target, size, offset);
}

int writeFile(sqlite3_file *file, const void *source, int size, sqlite3_int64 offset)
{
    bool torn = false;
    const int fault = layerOf(file).beforeWrite(&torn);
    if (fault != SQLITE_OK && !torn)
    {
        return fault;
    }
    layerOf(file).remember(*layerFile(file)->path, real(file), offset, size);
    const int written = fault == SQLITE_OK ? size : size / 2;
    const int result = real(file)->pMethods->xWrite(real(file), source, written, offset);
    return fault != SQLITE_OK ? fault : result;
}

int truncateFile(sqlite3_file *file, sqlite3_int64 size)
{
    const int fault = layerOf(file).beforeWrite(nullptr);
    if (fault != SQLITE_OK)
    {
        return fault;
    }
    sqlite3_int64 before = 0;
    real(file)->pMethods->xFileSize(real(file), &before);
    layerOf(file).remember(*layerFile(file)->path, real(file), size, before - size);
    return real(file)->pMethods->xTruncate(real(file), size);
}

int syncFile(sqlite3_file *file, int flags)
{
    const int fault = layerOf(file).beforeSync();
    if (fault != SQLITE_OK)
    {
        return fault;
    }
    layerOf(file).forget(*layerFile(file)->path);
    return layerOf(file).isQuick() ? SQLITE_OK : real(file)->pMethods->xSync(real(file), flags);
}

int sizeOfFile(sqlite3_file *file, sqlite3_int64 *size)
{
    return real(file)->pMethods->xFileSize(real(file), size);
}

int lockFile(sqlite3_file *file, int level)
{
    return layerOf(file).isBusy() ? SQLITE_BUSY : real(file)->pMethods->xLock(real(file), level);
}

int unlockFile(sqlite3_file *file, int level)
{
    return real(file)->pMethods->xUnlock(real(file), level);
}

int checkLock(sqlite3_file *file, int *reserved)
{
    return real(file)->pMethods->xCheckReservedLock(real(file), reserved);
}

int controlFile(sqlite3_file *file, int operation, void *argument)
{
    return real(file)->pMethods->xFileControl(real(file), operation, argument);
}

int sectorSize(sqlite3_file *file)
{
    return real(file)->pMethods->xSectorSize(real(file));
}

int characteristics(sqlite3_file *file)
{
    return real(file)->pMethods->xDeviceCharacteristics(real(file));
}

int mapShared(sqlite3_file *file, int page, int size, int extend, void volatile **target)
{
    return real(file)->pMethods->xShmMap(real(file), page, size, extend, target);
}

int lockShared(sqlite3_file *file, int offset, int count, int flags)
{
    const bool taking = (flags & SQLITE_SHM_LOCK) != 0;
    return taking && layerOf(file).isBusy() ? SQLITE_BUSY
                                            : real(file)->pMethods->xShmLock(real(file), offset, count, flags);
}

void barrier(sqlite3_file *file)
{
    real(file)->pMethods->xShmBarrier(real(file));
}

int unmapShared(sqlite3_file *file, int remove)
{
    return real(file)->pMethods->xShmUnmap(real(file), remove);
}

int fetchPage(sqlite3_file *file, sqlite3_int64 offset, int size, void **page)
{
    return real(file)->pMethods->xFetch(real(file), offset, size, page);
}

int unfetchPage(sqlite3_file *file, sqlite3_int64 offset, void *page)
{
    return real(file)->pMethods->xUnfetch(real(file), offset, page);
}

constexpr sqlite3_io_methods methodsOf(int version)
{
    sqlite3_io_methods methods = {};
    methods.iVersion = version;
    methods.xClose = closeFile;
    methods.xRead = readFile;
    methods.xWrite = writeFile;
    methods.xTruncate = truncateFile;
    methods.xSync = syncFile;
    methods.xFileSize = sizeOfFile;
    methods.xLock = lockFile;
    methods.xUnlock = unlockFile;
    methods.xCheckReservedLock = checkLock;
    methods.xFileControl = controlFile;
    methods.xSectorSize = sectorSize;
    methods.xDeviceCharacteristics = characteristics;
    methods.xShmMap = mapShared;
    methods.xShmLock = lockShared;
    methods.xShmBarrier = barrier;
    methods.xShmUnmap = unmapShared;
    methods.xFetch = fetchPage;
    methods.xUnfetch = unfetchPage;
    return methods;
}

// Version 2 has no mapping, so every read passes here.
constexpr sqlite3_io_methods unmappedMethods = methodsOf(2);
constexpr sqlite3_io_methods mappedMethods = methodsOf(3);

FaultyFileLayer &layerOf(sqlite3_vfs *layer)
{
    return *static_cast<FaultyFileLayer *>(layer->pAppData);
}

int openFile(sqlite3_vfs *vfs, const char *name, sqlite3_file *file, int flags, int *given)
{
    FaultyFileLayer &layer = layerOf(vfs);
    LayerFile *opened = layerFile(file);
    opened->base.pMethods = nullptr;
    opened->layer = &layer;
    int wanted = flags;
    if (layer.isReadOnly() && (flags & SQLITE_OPEN_MAIN_DB) != 0)
    {
        wanted = (flags & ~(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) | SQLITE_OPEN_READONLY;
    }
    const int result = layer.parent()->xOpen(layer.parent(), name, opened->real(), wanted, given);
    if (opened->real()->pMethods != nullptr)
    {
        opened->path = new std::string(name == nullptr ? "" : name);
        opened->base.pMethods = layer.isMapped() ? &mappedMethods : &unmappedMethods;
    }
    return result;
}

int removeFile(sqlite3_vfs *vfs, const char *name, int syncFolder)
{
    FaultyFileLayer &layer = layerOf(vfs);
    const int fault = layer.beforeWrite(nullptr);
    if (fault != SQLITE_OK)
    {
        return fault;
    }
    layer.forget(name);
    return layer.parent()->xDelete(layer.parent(), name, syncFolder);
}

int accessFile(sqlite3_vfs *vfs, const char *name, int flags, int *result)
{
    return layerOf(vfs).parent()->xAccess(layerOf(vfs).parent(), name, flags, result);
}

int fullName(sqlite3_vfs *vfs, const char *name, int size, char *full)
{
    return layerOf(vfs).parent()->xFullPathname(layerOf(vfs).parent(), name, size, full);
}

int randomBytes(sqlite3_vfs *vfs, int size, char *bytes)
{
    return layerOf(vfs).parent()->xRandomness(layerOf(vfs).parent(), size, bytes);
}

int sleepFor(sqlite3_vfs *vfs, int microseconds)
{
    return layerOf(vfs).isBusy() ? microseconds : layerOf(vfs).parent()->xSleep(layerOf(vfs).parent(), microseconds);
}

int timeNow(sqlite3_vfs *vfs, double *now)
{
    return layerOf(vfs).parent()->xCurrentTime(layerOf(vfs).parent(), now);
}

int systemError(sqlite3_vfs *vfs, int size, char *text)
{
    return layerOf(vfs).parent()->xGetLastError(layerOf(vfs).parent(), size, text);
}

int timeNow64(sqlite3_vfs *vfs, sqlite3_int64 *now)
{
    return layerOf(vfs).parent()->xCurrentTimeInt64(layerOf(vfs).parent(), now);
}
} // namespace

FaultyFileLayer::FaultyFileLayer()
    : m_name("faulty-" + std::to_string(reinterpret_cast<std::uintptr_t>(this))), m_parent(sqlite3_vfs_find(nullptr))
{
    m_layer.iVersion = 2;
    m_layer.szOsFile = static_cast<int>(sizeof(LayerFile)) + m_parent->szOsFile;
    m_layer.mxPathname = m_parent->mxPathname;
    m_layer.zName = m_name.c_str();
    m_layer.pAppData = this;
    m_layer.xOpen = openFile;
    m_layer.xDelete = removeFile;
    m_layer.xAccess = accessFile;
    m_layer.xFullPathname = fullName;
    m_layer.xRandomness = randomBytes;
    m_layer.xSleep = sleepFor;
    m_layer.xCurrentTime = timeNow;
    m_layer.xGetLastError = systemError;
    m_layer.xCurrentTimeInt64 = timeNow64;
    sqlite3_vfs_register(&m_layer, 0);
}

FaultyFileLayer::~FaultyFileLayer()
{
    sqlite3_vfs_unregister(&m_layer);
}

int FaultyFileLayer::Fault::take()
{
    const int left = allowed;
    if (left < 0)
    {
        return SQLITE_OK;
    }
    if (left > 0)
    {
        --allowed;
        return SQLITE_OK;
    }
    return result;
}

void FaultyFileLayer::failWrites(int allowed, int result, bool torn)
{
    m_torn = torn;
    m_writeFault.result = result;
    m_writeFault.allowed = allowed;
}

void FaultyFileLayer::failSyncs(int allowed, int result)
{
    m_syncFault.result = result;
    m_syncFault.allowed = allowed;
}

void FaultyFileLayer::failReads(int allowed, int result)
{
    m_readFault.result = result;
    m_readFault.allowed = allowed;
}

void FaultyFileLayer::heal()
{
    m_writeFault.allowed = -1;
    m_syncFault.allowed = -1;
    m_readFault.allowed = -1;
}

int FaultyFileLayer::beforeWrite(bool *torn)
{
    ++m_writes;
    if (m_cut)
    {
        return SQLITE_IOERR_WRITE;
    }
    const int fault = m_writeFault.take();
    if (fault != SQLITE_OK && torn != nullptr)
    {
        // Only the first failing write gets half of its bytes out.
        *torn = m_torn.exchange(false);
    }
    return fault;
}

int FaultyFileLayer::beforeSync()
{
    ++m_syncs;
    return m_cut ? SQLITE_IOERR_FSYNC : m_syncFault.take();
}

int FaultyFileLayer::beforeRead()
{
    return m_readFault.take();
}

void FaultyFileLayer::watchSyncs()
{
    m_watching = true;
}

void FaultyFileLayer::cutPower()
{
    m_cut = true;
}

void FaultyFileLayer::remember(const std::string &path, sqlite3_file *file, std::int64_t offset, std::int64_t size)
{
    if (!m_watching || path.empty() || size < 0)
    {
        return;
    }
    sqlite3_int64 fileSize = 0;
    file->pMethods->xFileSize(file, &fileSize);
    const std::int64_t old = std::max<std::int64_t>(0, std::min<std::int64_t>(size, fileSize - offset));
    Replaced replaced{fileSize, offset, std::vector<char>(static_cast<std::size_t>(old))};
    if (old > 0)
    {
        file->pMethods->xRead(file, replaced.bytes.data(), static_cast<int>(old), offset);
    }
    const std::lock_guard guard(m_mutex);
    m_replaced[path].push_back(std::move(replaced));
}

void FaultyFileLayer::forget(const std::string &path)
{
    const std::lock_guard guard(m_mutex);
    m_replaced.erase(path);
}

void FaultyFileLayer::restorePower()
{
    const std::lock_guard guard(m_mutex);
    for (auto &[path, replaced] : m_replaced)
    {
        const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
        for (auto write = replaced.rbegin(); file >= 0 && write != replaced.rend(); ++write)
        {
            if (::pwrite(file, write->bytes.data(), write->bytes.size(), write->offset) < 0 ||
                ::ftruncate(file, write->fileSize) != 0)
            {
                break;
            }
        }
        ::close(file);
    }
    m_replaced.clear();
    m_cut = false;
}
} // namespace zb::test
