// Global memory. Every block is fixed: its handle is its address. A registry of live blocks
// (rather than a header before each block) lets a foreign or freed handle be refused without
// reading memory that is not ours.
#include "hostinternal.h"

#include <cstdlib>
#include <unordered_map>

namespace {

// Beyond this a request fails as the system's would for want of memory; it also keeps absurd
// sizes (a negative number cast to SIZE_T) away from the C library and the sanitizers.
constexpr SIZE_T kMaxBlock = SIZE_T(1) << 36;

std::unordered_map<void*, SIZE_T>& Blocks()
{
    static auto* blocks = new std::unordered_map<void*, SIZE_T>;
    return *blocks;
}

// The block's size, or false when hMem is not a live block.
bool LiveBlock(HGLOBAL hMem, SIZE_T* size)
{
    host::detail::Lock lock(host::detail::StateMutex());
    auto it = Blocks().find(hMem);
    if (it == Blocks().end()) {
        return false;
    }
    *size = it->second;
    return true;
}

} // namespace

size_t host::detail::LiveMemoryBlockCount()
{
    Lock lock(StateMutex());
    return Blocks().size();
}

extern "C" {

// The block (which is also its handle), or NULL with ERROR_NOT_ENOUGH_MEMORY. GMEM_MOVEABLE
// blocks are fixed too; GMEM_ZEROINIT zeroes. A zero-byte request still gives a block.
HGLOBAL WINAPI GlobalAlloc(UINT uFlags, SIZE_T dwBytes)
{
    if (dwBytes > kMaxBlock) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    void* block = (uFlags & GMEM_ZEROINIT) ? std::calloc(1, dwBytes ? dwBytes : 1)
                                           : std::malloc(dwBytes ? dwBytes : 1);
    if (!block) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    host::detail::Lock lock(host::detail::StateMutex());
    Blocks()[block] = dwBytes;
    return block;
}

// NULL when freed (also for NULL); the handle itself with ERROR_INVALID_HANDLE when it is not
// a live block, so a double free is reported instead of corrupting the heap.
HGLOBAL WINAPI GlobalFree(HGLOBAL hMem)
{
    if (!hMem) {
        return nullptr;
    }
    {
        host::detail::Lock lock(host::detail::StateMutex());
        if (Blocks().erase(hMem) == 0) {
            SetLastError(ERROR_INVALID_HANDLE);
            return hMem;
        }
    }
    std::free(hMem);
    return nullptr;
}

// The block's address, or NULL with ERROR_INVALID_HANDLE for anything else.
LPVOID WINAPI GlobalLock(HGLOBAL hMem)
{
    SIZE_T size;
    if (!LiveBlock(hMem, &size)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return hMem;
}

// TRUE for a live block, as kernel32 answers for fixed memory, which has no lock count.
BOOL WINAPI GlobalUnlock(HGLOBAL hMem)
{
    SIZE_T size;
    if (!LiveBlock(hMem, &size)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}

// The size asked for at allocation; 0 with ERROR_INVALID_HANDLE for anything else.
SIZE_T WINAPI GlobalSize(HGLOBAL hMem)
{
    SIZE_T size;
    if (!LiveBlock(hMem, &size)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return size;
}

} // extern "C"
