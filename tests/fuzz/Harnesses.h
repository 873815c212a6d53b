#pragma once

#include <cstddef>
#include <cstdint>

/// The fuzzed entry points: each takes arbitrary bytes, feeds them to one reader of untrusted
/// input, and aborts only on a behaviour the reader must never show (a crash, undefined
/// behaviour, a list that does not read back). The same functions replay the saved corpus in the
/// normal test suite.
namespace fuzz
{

/// Saved view settings: the bytes as XML, read by a tree of the library's serializers.
void settings(const std::uint8_t* data, std::size_t size);
/// Comma lists: the bytes split by the escaped-list tokenizer, and, cut at zero bytes into
/// strings, written with stringValue and read back exactly.
void list(const std::uint8_t* data, std::size_t size);
/// Study folders: the bytes as cases.csv (up to a first form feed) and auxfiles.csv (after it).
void study(const std::uint8_t* data, std::size_t size);
/// Tables other tools write: the bytes as a table of runs, as a run's series table, and as the
/// data.csv of a Cinema database, each read by its reader.
void tables(const std::uint8_t* data, std::size_t size);

} // namespace fuzz
