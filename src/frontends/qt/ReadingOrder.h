#pragma once

#include <QList>
#include <QWidget>

/// The widgets in `top` from its beginning to its end as the eye goes: as its layouts hold them, hidden ones
/// too. Of what stands within a control (a table's cells, a field's buttons) only the control.
[[nodiscard]] QList<QWidget*> widgetsAsRead(const QWidget& top);

/// Has Tab go through the window in that order.
void orderFocus(const QWidget& window);

/// Puts the cursor where reading `part` begins: into its first table, field or other control that can be
/// used. Nothing where there is none.
void focusBeginningOf(const QWidget& part);
