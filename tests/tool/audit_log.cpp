// Writes the audit log whose bytes docs/file-formats.md shows to stdout.
#include "fixtures/audited_orders.h"

#include <kestrona/audit_log.h>

#include <iostream>

int main() {
    using Kestrona::Fixtures::AuditedOrders;
    AuditedOrders orders(L"planner", {Kestrona::Fixtures::Number(L"Key"), Kestrona::Fixtures::Text(L"Note")});
    orders.Store().SetDbValue(AuditedOrders::kOrders, 0, 0, 7.0);
    KSDLL_WriteLog(orders.Store(), AuditedOrders::kOrders, -1, 0);
    std::cout << AuditedOrders::LogBytes();
}
