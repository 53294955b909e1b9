// The life of the library: a count of initialisations, and the handle tables from the first initialisation on.
//
// Thread-safe; initialising and closing exclude each other.
#pragma once

namespace koro::internal
{

class HandleTables;

// One atomic load.
bool IsLibraryInitialized() noexcept;

// Increments the count; from 0 to 1 it creates the handle tables or opens them again. A failure does not change the
// count.
void InitializeLibrary();

// Decrements the count; from 1 to 0 it empties the tables, children before parents. Without an initialisation it does
// nothing. A call from a callback of an object that is destroyed here, or for which this function waits, gets the
// standard deadlock error.
void CloseLibrary();

// Valid from the first initialisation on, also for a call that overlaps the last close, which finds the tables empty.
HandleTables& Tables() noexcept;

} // namespace koro::internal
