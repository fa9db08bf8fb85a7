// The remaining names of the toy library. They are resolved, never called.
#include "kestrune/platform.h"

#define FAKE(name)                       \
  extern "C" KV_API int KV_CALL name() { \
    return 9001;                         \
  }
FAKE(CriticalPoint)
FAKE(FlashLLVatHP)
FAKE(FlashLLVatSP)
FAKE(FlashLLVatTP)
FAKE(FlashLLVatWP)
FAKE(FlashLLVatWT)
FAKE(FlashLLatTP)
FAKE(FlashLVatHP)
FAKE(FlashLVatSP)
FAKE(FlashLVatWP)
FAKE(FlashLVatWT)
FAKE(GasDensity_PPR78)
FAKE(GasDynamicViscosity_PPR78)
FAKE(GasMolarEnthalpy_Derivatives_PPR78)
FAKE(GasMolarEnthalpy_PPR78)
FAKE(GasMolarEntropy_Derivatives_PPR78)
FAKE(GasMolarEntropy_PPR78)
FAKE(GasMolarFreeEnthalpy_PPR78)
FAKE(GasN)
FAKE(GasSpecificHeat_PPR78)
FAKE(GasThermalConductivity_PPR78)
#ifndef FAKE_INCOMPLETE
FAKE(Humidity)
#endif
FAKE(HydrateLine)
FAKE(LiquidDensity_PPR78)
FAKE(LiquidMolarEnthalpy_Derivatives_PPR78)
FAKE(LiquidMolarEnthalpy_PPR78)
FAKE(LiquidMolarEntropy_Derivatives_PPR78)
FAKE(LiquidMolarEntropy_PPR78)
FAKE(LiquidMolarFreeEnthalpy_PPR78)
FAKE(MolecularWeight)
FAKE(PhaseEnvelope)
FAKE(WaterDewLine)
FAKE(WaterDewPressure)
FAKE(WaterDewTemperature)
FAKE(WetGasComposition)
