#include "HandWrittenRules.h"

#include <cstdlib>

bool SignedValueByHand::checkValue(int sample)
{
    return sample > 100;
}

bool UnsignedValueByHand::checkValue(unsigned int sample)
{
    return sample > 3000000000U;
}

bool OrByHand::checkValue(int sample)
{
    return (sample < -500) || (sample > 500);
}

bool AndByHand::checkValue(int sample)
{
    return (sample >= -500) && (sample <= 500);
}

bool DeltaByHand::checkDelta(int firstSample, int secondSample)
{
    return std::llabs(static_cast<long long>(secondSample) - firstSample) > 250;
}

bool SingleHysteresisByHand::checkSingle(int sample, bool previousState)
{
    return (previousState && (sample > 400)) || (sample > 600);
}

void DoubleHysteresisByHand::checkDouble(int sample, bool& upperState, bool& lowerState)
{
    upperState = (upperState && (sample > 400)) || (sample > 600);
    lowerState = (lowerState && (sample < -400)) || (sample < -600);
}
