// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/sax2/NameTable.h>

#include <bit>
#include <new>

namespace pelluvia::xml {

NameTable::NameTable(xmlDictPtr dictionary, std::span<const std::string_view> names)
    : slots_(std::bit_ceil(2 * names.size() + 2)), mask_(slots_.size() - 1) {
    std::uint16_t number = 0;
    for (const std::string_view name : names) {
        const xmlChar *address =
            xmlDictLookup(dictionary, reinterpret_cast<const xmlChar *>(name.data()),
                          static_cast<int>(name.size()));
        if (address == nullptr) {
            throw std::bad_alloc();
        }
        std::size_t i = home(address);
        while (slots_[i].address != nullptr) {
            i = (i + 1) & mask_;
        }
        slots_[i] = {address, {text(address), ++number}};
    }
}

} // namespace pelluvia::xml
