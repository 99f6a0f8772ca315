// The page that opens the customization panel for an included script.
#pragma once

#include "templates/win/IncludedPage.h"

namespace zoka {

class CustomizePage : public IncludedPage {
public:
    using IncludedPage::IncludedPage;
    void mainAction() override;

protected:
    const Look& look() const override;
    std::string lastColumn(size_t index) const override;
    std::string note(size_t index) const override;
    bool canDo(size_t index) const override;
    bool canDoOther(size_t index) const override { return session().isUsedFromTemplates(index); }
    void otherAction(size_t index) override;
};

}  // namespace zoka
