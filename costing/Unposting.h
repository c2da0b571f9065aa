// Takes transactions out of the cost tables again.
#pragma once

#include <functional>

#include "data/GenericDAO.h"

namespace dw {

/// Subtracts the recordset's current transaction from the five cost tables, in a workspace of its own. False
/// if its asset is not on file; true otherwise, even if rows were missing. Neither changes the transaction
/// nor looks at `When Posted`: the caller does that.
bool UnpostTransaction(dao::Recordset& transaction);

/// Unposts a transaction that the recordset holds in edit: subtracts it, sets `When Posted` to Null and the
/// audit columns, stores it and takes the hold again. `beforeUpdate` may change more of the record after the
/// figures with which it was posted are out of the cost tables. True if the record is held again at the end;
/// false, after the message, if the record could not be stored (it is still in edit then) or could not be
/// held again.
bool UnpostHeldTransaction(const DaoRecordsetPtr& transaction,
                           const std::function<void()>& beforeUpdate = {});

/// Unposts every posted transaction of every asset. The rows share commits, and a row is in the same one as
/// its five cost rows unless somebody has to be waited for in between. A row that two runs meet is unposted
/// once. Throws StoreError for an engine error; every row that was unposted before it stays so. Calls
/// `progress` after each row with the percentage of rows seen, so that a window can show the progress.
void UnpostAll(const std::function<void(int percent)>& progress = {});

}  // namespace dw
