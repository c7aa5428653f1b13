#pragma once

#include <QByteArrayView>

// A look at a binary property list ("bplist00") that never recurses, so that
// no input can exhaust the stack: only data that passes it is handed to the
// property-list library, whose parser does recurse.
namespace BinaryPlistShape {

// Whether the bytes hold a root array of flat dictionaries: string keys, no
// container among the values, every offset and reference in range, no
// dictionary listed twice, and no more than a few times the input's size once
// shared values are copied out.
bool isArrayOfFlatDictionaries(QByteArrayView bytes);

} // namespace BinaryPlistShape
