// The remaining names of the toy library. They are resolved, never called.
#include "kestrune/platform.h"

#define FAKE(name)                       \
  extern "C" KV_API int KV_CALL name() { \
    return 9001;                         \
  }
FAKE(CriticalPoint)
FAKE(FlashLLatTP)
FAKE(GasMolarEnthalpy_Derivatives_PPR78)
FAKE(GasMolarEntropy_Derivatives_PPR78)
#ifndef FAKE_INCOMPLETE
FAKE(Humidity)
#endif
FAKE(HydrateLine)
FAKE(LiquidMolarEntropy_Derivatives_PPR78)
FAKE(MolecularWeight)
FAKE(GasPhi_Derivatives_PPR78)
FAKE(LiquidPhi_Derivatives_PPR78)
FAKE(PhaseEnvelope)
FAKE(WaterDewLine)
FAKE(WaterDewPressure)
FAKE(WaterDewTemperature)
FAKE(WetGasComposition)
