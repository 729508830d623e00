#include "frontends/qt/ShareAddress.h"

#include <QUrl>

namespace frontend {

namespace {

std::string encoded(const std::string& name) {
    return QByteArray::fromStdString(name).toPercentEncoding().toStdString();
}

/// Returns the address of the same computer's AFP server, at its usual port.
std::string afpAddress(const ShareServer& server) {
    return "afp://" + QUrl(QString::fromStdString(server.address)).host().toStdString() + "/";
}

} // namespace

std::string valueOf(NSTableView& table, const char* identifier, int row) {
    const NSTableColumn* column = table.tableColumnWithIdentifier(identifier);
    return column == nullptr ? std::string() : table.objectValue(*column, row);
}

std::string smbAddressOf(const ShareServer& server, const std::string& share) {
    return server.address.empty() ? std::string() : server.address + encoded(share);
}

std::string addressOf(const ShareServer& server, NSTableView& shares, int row,
                      const std::function<bool(const std::string&)>& hasSection) {
    if (server.address.empty()) {
        return {};
    }
    // The table marks every folder that is offered, perhaps under another name.
    const std::string name = valueOf(shares, "ShareName", row);
    if (valueOf(shares, "SMB", row) == "+" && (!hasSection || hasSection(name))) {
        return smbAddressOf(server, name);
    }
    return valueOf(shares, "AFS", row) == "+" ? afpAddress(server) + encoded(valueOf(shares, "AFPName", row))
                                              : std::string();
}

} // namespace frontend
