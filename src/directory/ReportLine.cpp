#include "directory/ReportLine.h"

#include "platform/foundation/NSString.h"

std::vector<std::string> piecesOfReportLine(std::string_view line) {
    return componentsSeparatedByString(line, "\t");
}
