#pragma once

#include <QList>
#include <QWidget>

namespace frontend {

/// Returns the widgets in `top` in reading order, which is the order of its layouts, including hidden ones. A
/// control's own parts (a table's cells, a field's buttons) are left out.
[[nodiscard]] QList<QWidget*> widgetsAsRead(const QWidget& top);

/// Makes Tab go through the window in that order.
void orderFocus(const QWidget& window);

/// Moves the focus to the first table, field or other control in `part` that can be used. Does nothing when
/// there is none.
void focusBeginningOf(const QWidget& part);

} // namespace frontend
