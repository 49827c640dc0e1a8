// SPDX-License-Identifier: GPL-3.0-or-later
#include "LibraryPages.h"

#include <algorithm>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

namespace LibraryPages {
namespace {

int releaseLibrary(dl_phdr_info* info, size_t /*size*/, void* data)
{
    const auto& fileNames = *static_cast<const QByteArrayList*>(data);
    const QByteArray path(info->dlpi_name != nullptr ? info->dlpi_name : "");
    const QByteArray fileName = path.mid(path.lastIndexOf('/') + 1);
    if (fileName.isEmpty() ||
        std::none_of(fileNames.begin(), fileNames.end(),
                     [&fileName](const QByteArray& wanted) { return fileName.startsWith(wanted); }))
        return 0;
    const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    for (ElfW(Half) i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = info->dlpi_phdr[i];
        // A writable segment's pages were written (relocations, the library's own variables):
        // dropping them would lose that.
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0)
            continue;
        // Whole pages of the segment only, so that no neighbour's page is touched.
        const uintptr_t first = info->dlpi_addr + segment.p_vaddr;
        const uintptr_t start = (first + page - 1) & ~(page - 1);
        const uintptr_t end = (first + segment.p_memsz) & ~(page - 1);
        if (end <= start)
            continue;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader gives addresses as numbers.
        madvise(reinterpret_cast<void*>(start), end - start, MADV_DONTNEED);
    }
    return 0;
}

} // namespace

void release(const QByteArrayList& fileNames)
{
    QByteArrayList names = fileNames;
    dl_iterate_phdr(releaseLibrary, &names);
}

} // namespace LibraryPages
