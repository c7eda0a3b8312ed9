// SPDX-License-Identifier: MIT
#include "Adaptor.h"

#include <cstdio>
#include <cstdlib>

namespace zr::conformance {

// Defined beside the adaptor: what must exist before there can be one.
std::shared_ptr<void> prepare(int& argc, char** argv);
const char* adaptorName();

namespace {

// Prints the reasons of skipped tests, also into the file that ZR_DIFFERENCES names.
class Differences final : public testing::EmptyTestEventListener {
public:
    void OnTestEnd(const testing::TestInfo& test) override {
        for (int i = 0; i < test.result()->total_part_count(); ++i) {
            const auto& part = test.result()->GetTestPartResult(i);
            if (part.skipped()) reasons_.push_back(std::string(test.name()) + ": " + part.message());
        }
    }
    void OnTestProgramEnd(const testing::UnitTest&) override {
        const char* const path = std::getenv("ZR_DIFFERENCES");
        std::FILE* const file = path ? std::fopen(path, "w") : nullptr;
        for (std::FILE* const out : {stdout, file}) {
            if (!out) continue;
            std::fprintf(out, "Differences of %s: %zu\n", adaptorName(), reasons_.size());
            for (const auto& reason : reasons_) std::fprintf(out, "  %s\n", reason.c_str());
        }
        if (file) std::fclose(file);
    }

private:
    std::vector<std::string> reasons_;
};

} // namespace

} // namespace zr::conformance

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const auto held = zr::conformance::prepare(argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new zr::conformance::Differences);
    return RUN_ALL_TESTS();
}
