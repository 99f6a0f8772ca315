// The page that takes included scripts out of the main script.
#pragma once

#include "templates/win/IncludedPage.h"

namespace zoka {

class RemovePage : public IncludedPage {
public:
    using IncludedPage::IncludedPage;
    void mainAction() override;

protected:
    const Look& look() const override;
    std::string lastColumn(size_t index) const override;
    std::string note(size_t index) const override;
    bool canDo(size_t index) const override;
    LRESULT notified(NMHDR& header) override;
};

}  // namespace zoka
