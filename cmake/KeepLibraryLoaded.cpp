// Compiled into every target that links TessarkAO::tessarkao: a reference to
// libtessarkao, so that --as-needed keeps the library whose loading registers
// the classes with CreateObject.
#include <span>

#include "frame/ClassCatalogue.hpp"

namespace {
[[gnu::used]] std::span<const TessarkAO::ClassRecord> (*const kKeepLibraryLoaded)() =
    &TessarkAO::LibraryClasses;
}
