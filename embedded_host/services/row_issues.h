// How a row of the embedded host gives what an analysis has found about it.
#pragma once

#include <string>
#include <vector>

namespace embedded_host {

// A second interface of a row; `getRowIssues` finds it by a cast.
class IRowIssueSource {
public:
    virtual ~IRowIssueSource() = default;
    // Names of what bounds the row, the weightiest first; empty when that isn't known.
    virtual std::vector<std::string> boundedBy() const = 0;
};

}  // namespace embedded_host
