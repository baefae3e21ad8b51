// The typed handle table.
#include "handles.h"

#include <unordered_map>

namespace host::detail {

namespace {

struct Table
{
    std::unordered_map<uintptr_t, std::shared_ptr<HandleObject>> objects;
    // The handle found last, as the driver uses one printer handle for a hundred calls in a
    // row; cleared when that handle is closed.
    uintptr_t lastValue = 0;
    HandleObject* lastObject = nullptr;
    // Counts up from well above the fixed desktop window (0x10010); the predefined HKEYs lie
    // near 2^64 - 2^31, out of reach.
    uintptr_t next = 0x100000;
};

Table& TheTable()
{
    static Table* table = new Table; // outlives static destructors that may close handles
    return *table;
}

} // namespace

void* AddHandle(std::shared_ptr<HandleObject> object)
{
    Lock lock(StateMutex());
    Table& t = TheTable();
    uintptr_t value = t.next;
    t.next += 4;
    t.objects.emplace(value, std::move(object));
    return reinterpret_cast<void*>(value);
}

HandleObject* PeekHandle(const void* handle, HandleKind kind)
{
    Table& t = TheTable();
    auto value = reinterpret_cast<uintptr_t>(handle);
    HandleObject* object = nullptr;
    if (value && value == t.lastValue) {
        object = t.lastObject;
    } else {
        auto it = t.objects.find(value);
        if (it == t.objects.end()) {
            return nullptr;
        }
        object = it->second.get();
        t.lastValue = value;
        t.lastObject = object;
    }
    return object->kind == kind ? object : nullptr;
}

std::shared_ptr<HandleObject> FindHandle(const void* handle, HandleKind kind)
{
    Lock lock(StateMutex());
    Table& t = TheTable();
    auto it = t.objects.find(reinterpret_cast<uintptr_t>(handle));
    if (it == t.objects.end() || it->second->kind != kind) {
        return nullptr;
    }
    return it->second;
}

std::shared_ptr<HandleObject> RemoveHandle(const void* handle, HandleKind kind)
{
    Lock lock(StateMutex());
    Table& t = TheTable();
    auto it = t.objects.find(reinterpret_cast<uintptr_t>(handle));
    if (it == t.objects.end() || it->second->kind != kind) {
        return nullptr;
    }
    auto object = std::move(it->second);
    t.objects.erase(it);
    if (t.lastValue == reinterpret_cast<uintptr_t>(handle)) {
        t.lastValue = 0;
        t.lastObject = nullptr;
    }
    return object;
}

size_t LiveHandleCount(HandleKind kind)
{
    Lock lock(StateMutex());
    size_t count = 0;
    for (const auto& [value, object] : TheTable().objects)
        count += object->kind == kind;
    return count;
}

} // namespace host::detail

namespace host {

HandleCounts CountHandles()
{
    using namespace detail;
    HandleCounts counts;
    counts.windows = LiveWindowCount();
    counts.menus = LiveMenuCount();
    counts.printers = LiveHandleCount(HandleKind::Printer);
    counts.registryKeys = LiveHandleCount(HandleKind::RegistryKey);
    counts.files = LiveHandleCount(HandleKind::File);
    counts.modules = LoadedModuleCount();
    counts.memoryBlocks = LiveMemoryBlockCount();
    counts.pages = LivePageCount();
    return counts;
}

} // namespace host
