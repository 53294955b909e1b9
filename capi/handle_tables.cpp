#include "capi/handle_tables.h"

namespace koro::internal
{

void HandleTables::Open()
{
    std::apply([](auto&... table) { (table.Open(), ...); }, tables);
}

void HandleTables::Close()
{
    std::apply([](auto&... table) { (table.Close(), ...); }, tables);
}

} // namespace koro::internal
