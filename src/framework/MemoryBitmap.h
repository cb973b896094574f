// Bitmaps to draw on in memory, with the contexts that they are selected into.
//
// Each object ends what it holds. Threads: one at a time.
#pragma once

#include "platform/gdi.h"

#include <utility>

namespace zb
{
/// A bitmap that is deleted with the object.
class OwnedBitmap
{
  public:
    explicit OwnedBitmap(HBITMAP bitmap) : m_bitmap(bitmap)
    {
    }
    ~OwnedBitmap()
    {
        DeleteObject(m_bitmap);
    }
    OwnedBitmap(const OwnedBitmap &) = delete;
    OwnedBitmap &operator=(const OwnedBitmap &) = delete;

    HBITMAP handle() const
    {
        return m_bitmap;
    }
    /// For calls that put another in its place and delete the former one.
    HBITMAP *address()
    {
        return &m_bitmap;
    }
    /// Hands it out; the object then holds none.
    HBITMAP release()
    {
        return std::exchange(m_bitmap, nullptr);
    }

  private:
    HBITMAP m_bitmap;
};

/// A context in memory with a bitmap of somebody else's selected.
class MemoryContext
{
  public:
    explicit MemoryContext(HBITMAP bitmap) : m_context(CreateCompatibleDC(nullptr))
    {
        m_former = bitmap == nullptr ? nullptr : SelectObject(m_context, bitmap);
    }
    ~MemoryContext()
    {
        leave();
    }
    MemoryContext(const MemoryContext &) = delete;
    MemoryContext &operator=(const MemoryContext &) = delete;

    /// False when there is no bitmap, or it is selected elsewhere.
    bool isValid() const
    {
        return m_former != nullptr;
    }
    HDC context() const
    {
        return m_context;
    }
    /// Takes the bitmap out.
    void leave()
    {
        if (m_former != nullptr)
        {
            SelectObject(m_context, std::exchange(m_former, nullptr));
        }
        if (m_context != nullptr)
        {
            DeleteDC(std::exchange(m_context, nullptr));
        }
    }

  private:
    HDC m_context;
    HGDIOBJ m_former = nullptr;
};

/// A bitmap of its own, selected.
class MemoryBitmap
{
  public:
    /// Takes the bitmap over.
    explicit MemoryBitmap(HBITMAP bitmap) : m_bitmap(bitmap), m_context(bitmap)
    {
    }
    /// Like the screen.
    MemoryBitmap(int width, int height) : MemoryBitmap(likeScreen(width, height))
    {
    }

    bool isValid() const
    {
        return m_context.isValid();
    }
    HDC context() const
    {
        return m_context.context();
    }
    HBITMAP bitmap() const
    {
        return m_bitmap.handle();
    }
    /// Hands the bitmap out, no longer selected.
    HBITMAP release()
    {
        m_context.leave();
        return m_bitmap.release();
    }

  private:
    static HBITMAP likeScreen(int width, int height)
    {
        const HDC screen = GetDC(nullptr);
        const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
        ReleaseDC(nullptr, screen);
        return bitmap;
    }

    OwnedBitmap m_bitmap;
    MemoryContext m_context;
};
} // namespace zb
