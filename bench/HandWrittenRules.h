#ifndef BENCH_HAND_WRITTEN_RULES_H
#define BENCH_HAND_WRITTEN_RULES_H

// The benchmarked rules as a programmer would write them in C++, with their thresholds compiled in. Defined in a
// separate unit, so that each is a call like one into the library.

struct SignedValueByHand {
    static bool checkValue(int sample);
};

struct UnsignedValueByHand {
    static bool checkValue(unsigned int sample);
};

struct OrByHand {
    static bool checkValue(int sample);
};

struct AndByHand {
    static bool checkValue(int sample);
};

struct DeltaByHand {
    static bool checkDelta(int firstSample, int secondSample);
};

struct SingleHysteresisByHand {
    static bool checkSingle(int sample, bool previousState);
};

struct DoubleHysteresisByHand {
    static void checkDouble(int sample, bool& upperState, bool& lowerState);
};

#endif
