#pragma once

#include "orrin/token_reader.h"

#include <vector>

namespace orrin {

// What the lists of the languages have in common: [a, b], f(a, b), { key: a, key: b }, widget(key: a, key: b).

struct key_t {
    name_t name;
    std::uint32_t offset = 0;
};

// Reads "key:". A key is an identifier, which may be a keyword, or a string.
key_t parse_key(token_reader_t& reader);

// Fails at the first key that has been there before.
void check_unique(const token_reader_t& reader, const std::vector<key_t>& keys);

// Reads "item, item, ... close" behind the opening token. A comma may stand behind the last item, too.
template <class ReadItem>
void parse_list(token_reader_t& reader, token_kind_t close, ReadItem readItem) {
    while (!reader.accept(close)) {
        readItem();
        if (reader.accept(token_kind_t::comma)) continue;
        if (!reader.at(close)) reader.fail_expected("',' or " + std::string(token_kind_phrase(close)));
    }
}

} // namespace orrin
