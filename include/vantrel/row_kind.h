#pragma once
// What a row of the record table stands for.

namespace vantrel {

enum class RowKind { Record, Miss, Restart, Status };

}  // namespace vantrel
