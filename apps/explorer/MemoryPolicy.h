#pragma once

namespace explorer
{

/// Keeps freed blocks of up to a gigabyte in the heap for the next allocation instead of handing
/// each back to the system. The views make lists of millions of rows at every selection; glibc
/// maps a block above 32 MB from the system afresh and unmaps it when freed, and a fresh page
/// costs a fault on first touch: at ten million cases that was a third of selecting everything.
/// The price is that memory freed stays with the program (up to a gigabyte) until it is reused.
void keepLargeBlocksInHeap();

} // namespace explorer
