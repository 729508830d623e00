#include "access/Doctor.h"

#include "access/Examiner.h"

#include <algorithm>

namespace accesscheck {

bool Examination::hasProblems() const {
    return std::ranges::any_of(
        findings, [](const Finding& finding) { return finding.level == Finding::Level::Problem; });
}

Examination examine(const ExaminedHost& host) {
    Examiner examiner(host);
    examiner.examineShares();
    examiner.examineAccounts();
    examiner.examineSettings();
    examiner.examineServers();
    examiner.examineOwnFiles();
    return examiner.take();
}

std::vector<Finding> examineShares(const ExaminedHost& host, const SMBConf& conf,
                                   std::span<const NormalShare> shares) {
    Examiner examiner(host, conf, shares);
    examiner.examineShares();
    return examiner.take().findings;
}

} // namespace accesscheck
