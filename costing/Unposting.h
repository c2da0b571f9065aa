// Out of the cost tables again.
#pragma once

#include <functional>

#include "data/GenericDAO.h"

namespace dw {

/// Subtracts the transaction that the recordset stands on from the five cost tables, in a workspace of its
/// own. False when its asset is not on file; true otherwise, whatever was found or not. Changes neither the
/// transaction nor tests `When Posted`: that falls to the caller.
bool UnpostTransaction(dao::Recordset& transaction);

/// Unposts a transaction that the recordset holds in edit: subtraction, `When Posted` Null, audit columns,
/// and the lock taken again. `beforeUpdate` may change more of the record once the figures that it was posted
/// with are out of the cost tables. True when the record is held again at the end; false, after the message,
/// where the record could not be stored (it is still in edit then) or not be held again.
bool UnpostHeldTransaction(const DaoRecordsetPtr& transaction,
                           const std::function<void()>& beforeUpdate = {});

/// Unposts every posted transaction of every asset. Calls `progress` with the percentage of the rows seen,
/// after each row, so that a window can show how far the work is.
void UnpostAll(const std::function<void(int percent)>& progress = {});

}  // namespace dw
