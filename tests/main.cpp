// Runs the tests with the engine's tables built, as the program builds them at its start.

#include <gtest/gtest.h>

#include "board/bitboard.h"
#include "board/keys.h"
#include "eval/kpk.h"
#include "harness/engine.h"

namespace {

struct EngineTables : testing::Environment {
    void SetUp() override {
        quon::init_attack_tables();
        quon::init_keys();
        quon::build_kpk_bitbase();
        quon::test::derive_parameters();
    }
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new EngineTables);  // owned by the framework
    return RUN_ALL_TESTS();
}
