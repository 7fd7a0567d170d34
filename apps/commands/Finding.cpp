#include "Finding.h"

const char* Finding::nameOf(State state) {
    switch (state) {
    case State::ok:
        return "ok";
    case State::warning:
        return "warning";
    case State::problem:
        break;
    }
    return "problem";
}
