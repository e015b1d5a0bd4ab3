// SPDX-License-Identifier: MIT
// A flag that is true while a scope is active.
#pragma once

namespace quillon {

// Lowers the flag when the scope is left, also by an exception.
class RaisedFlag {
public:
    explicit RaisedFlag(bool& raised) : flag(raised) { flag = true; }

    RaisedFlag(const RaisedFlag&) = delete;
    RaisedFlag& operator=(const RaisedFlag&) = delete;

    ~RaisedFlag() { flag = false; }

private:
    bool& flag;
};

} // namespace quillon
