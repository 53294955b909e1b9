#include "capi/handle_tables.h"

namespace koro::internal
{

void HandleTables::Open()
{
    std::apply([](auto&... table) { (table.Open(), ...); }, tables);
}

Instance::Holds HandleTables::Roots()
{
    return Table<ProducerLibrary>().All();
}

void HandleTables::Close()
{
    std::apply([](auto&... table) { (table.Close(), ...); }, tables);
}

} // namespace koro::internal
