// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmMemoryInfo.h"

// Doesn't use Qt, so that the code for each system can be checked with only the compiler of that system.
#if defined(_WIN32)
#include <windows.h>
#elif defined(__APPLE__)
#include <mach/mach.h>
#include <sys/sysctl.h>
#elif defined(__linux__)
#include <sys/auxv.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <limits>
#include <map>
#include <string>
#endif

namespace {

// The kinds of LmDriveSpace::memoryInfo().
constexpr int PhysicalMemory = 0;
constexpr int AddressSpace = 1;
constexpr int PageFile = 2;

} // namespace

#if defined(_WIN32)

LmMemoryFigures lmMemoryFigures(int kind)
{
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (!GlobalMemoryStatusEx(&status))
        return {};
    switch (kind) {
    case PhysicalMemory:
        return {double(status.ullTotalPhys), double(status.ullAvailPhys)};
    case AddressSpace:
        return {double(status.ullTotalVirtual), double(status.ullAvailVirtual)};
    case PageFile:
        return {double(status.ullTotalPageFile), double(status.ullAvailPageFile)};
    default:
        return {};
    }
}

#elif defined(__APPLE__)

namespace {

LmMemoryFigures physicalMemory()
{
    uint64_t total = 0;
    size_t size = sizeof total;
    vm_statistics64_data_t pages{};
    mach_msg_type_number_t count = HOST_VM_INFO64_COUNT;
    if (sysctlbyname("hw.memsize", &total, &size, nullptr, 0) != 0 ||
        host_statistics64(mach_host_self(), HOST_VM_INFO64, reinterpret_cast<host_info64_t>(&pages), &count) !=
            KERN_SUCCESS) {
        return {};
    }
    // Inactive pages are reclaimed when a process needs memory. Speculative pages are included in free_count.
    const double available = double(pages.free_count) + double(pages.inactive_count);
    return {double(total), available * double(vm_kernel_page_size)};
}

LmMemoryFigures addressSpace()
{
    task_vm_info_data_t info{};
    mach_msg_type_number_t count = TASK_VM_INFO_COUNT;
    if (task_info(mach_task_self(), TASK_VM_INFO, reinterpret_cast<task_info_t>(&info), &count) != KERN_SUCCESS)
        return {};
    const auto total = double(info.max_address - info.min_address);
    return {total, total - double(info.virtual_size)};
}

LmMemoryFigures pageFile()
{
    const LmMemoryFigures memory = physicalMemory();
    xsw_usage swap{};
    size_t size = sizeof swap;
    if (memory.total < 0 || sysctlbyname("vm.swapusage", &swap, &size, nullptr, 0) != 0)
        return {};
    return {memory.total + double(swap.xsu_total), memory.available + double(swap.xsu_avail)};
}

} // namespace

#elif defined(__linux__)

namespace {

/// Returns the fields of /proc/meminfo in bytes, or an empty map if there is no such file.
std::map<std::string, double> memoryFields()
{
    std::map<std::string, double> fields;
    std::ifstream file("/proc/meminfo");
    std::string name;
    double kibibytes = 0;
    // A line is like "MemTotal:  16303428 kB"; the unit is skipped.
    while (file >> name >> kibibytes) {
        fields[name] = kibibytes * 1024;
        file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    return fields;
}

LmMemoryFigures physicalMemory()
{
    const auto fields = memoryFields();
    const auto total = fields.find("MemTotal:");
    const auto available = fields.find("MemAvailable:");
    if (total == fields.end() || available == fields.end())
        return {};
    return {total->second, available->second};
}

LmMemoryFigures addressSpace()
{
    double usedPages = 0;
    if (!(std::ifstream("/proc/self/statm") >> usedPages))
        return {};

    rlimit limit{};
    double total = 0;
    if (getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
        total = double(limit.rlim_cur);
    } else {
        // There is no call for the size of the address space. It is a power of two; the stack is at its top, and the
        // name of the program at the top of the stack.
        const auto top = double(getauxval(AT_EXECFN));
        for (total = 1; total < top;)
            total *= 2;
    }
    const double used = usedPages * double(sysconf(_SC_PAGESIZE));
    return {total, used < total ? total - used : 0};
}

LmMemoryFigures pageFile()
{
    const LmMemoryFigures memory = physicalMemory();
    const auto fields = memoryFields();
    const auto total = fields.find("SwapTotal:");
    const auto available = fields.find("SwapFree:");
    if (memory.total < 0 || total == fields.end() || available == fields.end())
        return {};
    return {memory.total + total->second, memory.available + available->second};
}

} // namespace

#endif

#if defined(__APPLE__) || defined(__linux__)

LmMemoryFigures lmMemoryFigures(int kind)
{
    switch (kind) {
    case PhysicalMemory:
        return physicalMemory();
    case AddressSpace:
        return addressSpace();
    case PageFile:
        return pageFile();
    default:
        return {};
    }
}

#elif !defined(_WIN32)

LmMemoryFigures lmMemoryFigures(int /*kind*/)
{
    return {};
}

#endif
