// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>

#include <string>

namespace zr {

class NSCoder;
class NSTableView;

// A column of a table. Lengths in points.
class ZR_EXPORT NSTableColumn : public NSObject {
public:
    ZR_CLASS(NSTableColumn, NSObject)

    bool initWithIdentifier(const std::string& identifier);
    bool initWithCoder(NSCoder& coder); // identifier, title, widths

    const std::string& identifier() const { return identifier_; }
    NSTableView* tableView() const { return tableView_; }
    // What stands in the header; empty at first.
    const std::string& title() const { return title_; }
    void setTitle(const std::string& title);
    // Kept between the least and the greatest, which are 10 and without end at first.
    double width() const { return width_; }
    void setWidth(double width);
    double minWidth() const { return minWidth_; }
    void setMinWidth(double width);
    double maxWidth() const { return maxWidth_; }
    void setMaxWidth(double width);

private:
    friend class NSTableView;
    void changed();

    std::string identifier_;
    std::string title_;
    double width_ = 100;
    double minWidth_ = 10;
    double maxWidth_ = 3.40282346638528859812e38;
    NSTableView* tableView_ = nullptr; // cleared by the table
};

} // namespace zr
