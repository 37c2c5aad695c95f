// Program entry.

#include "frontend/startup.h"

int main(int argc, char** argv) {
    return quon::run_program({argv + (argc > 0 ? 1 : 0), argv + argc});
}
