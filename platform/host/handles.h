// The handle table: every HANDLE and HKEY the host gives out names one typed object here, so
// that a file handle passed to ClosePrinter, a stale handle, or a made-up number is told apart
// from a live handle of the right kind and answered with ERROR_INVALID_HANDLE.
#pragma once

#include "hostinternal.h"

#include <cstdint>
#include <memory>

namespace host::detail {

enum class HandleKind
{
    File,
    Printer,
    GdiObject, // bitmaps, icons, cursors, fonts, brushes and pens (gdi.cpp)
    RegistryKey
};

struct HandleObject
{
    explicit HandleObject(HandleKind k) : kind(k) {}
    virtual ~HandleObject() = default;
    const HandleKind kind;
};

// Adds an object and returns its handle: a multiple of 4, as on Windows, never reused in the
// life of the process, and never null, INVALID_HANDLE_VALUE or a predefined registry key.
void* AddHandle(std::shared_ptr<HandleObject> object);
// The object of a live handle of that kind, or null.
std::shared_ptr<HandleObject> FindHandle(const void* handle, HandleKind kind);
// The same without a reference of its own, for the hot read paths: the caller holds
// StateMutex() for as long as it uses the object, so that no one can close the handle meanwhile.
HandleObject* PeekHandle(const void* handle, HandleKind kind);
// How many live handles of that kind the table holds.
size_t LiveHandleCount(HandleKind kind);
// Takes the handle out of the table; null when it is not a live handle of that kind.
std::shared_ptr<HandleObject> RemoveHandle(const void* handle, HandleKind kind);

template <typename T> std::shared_ptr<T> Find(const void* handle)
{
    return std::static_pointer_cast<T>(FindHandle(handle, T::kKind));
}

template <typename T> T* Peek(const void* handle)
{
    return static_cast<T*>(PeekHandle(handle, T::kKind));
}

} // namespace host::detail
