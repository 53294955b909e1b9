// The life of the library: a count of initialisations, and the handle tables from the first initialisation on.
//
// Thread-safe; initialising and closing exclude each other.
#pragma once

namespace koro::internal
{

class HandleTables;

// One atomic load.
bool IsLibraryInitialized() noexcept;

// Counts up; at 0 to 1 the handle tables are made, or opened again. A failure leaves the counter as it was.
void InitializeLibrary();

// Counts down; at 1 to 0 the tables are emptied, children before parents. Without an initialisation it does nothing.
// A call from a callback of an object that dies in here, or that this waits for, gets the standard deadlock error.
void CloseLibrary();

// Valid from the first initialisation on, also for a call that overlaps the last close: it finds them empty.
HandleTables& Tables() noexcept;

} // namespace koro::internal
