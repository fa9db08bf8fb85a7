// The calculation library as a host sees it: opened at run time, every export resolved by name.
#ifndef KESTRUNE_HOST_LIBRARY_HPP
#define KESTRUNE_HOST_LIBRARY_HPP

#include <string>
#include <vector>

#include "kestrune/kvgasthermo.h"
#include "kestrune/kvtoolslite.h"

namespace kestrune::host {

// The 39 exports.
#define KESTRUNE_HOST_EXPORTS(X)           \
  X(ConvertPPR78GroupData)                 \
  X(CriticalPoint)                         \
  X(FlashLLVatHP)                          \
  X(FlashLLVatSP)                          \
  X(FlashLLVatTP)                          \
  X(FlashLLVatWP)                          \
  X(FlashLLVatWT)                          \
  X(FlashLLatTP)                           \
  X(FlashLVatHP)                           \
  X(FlashLVatSP)                           \
  X(FlashLVatTP)                           \
  X(FlashLVatWP)                           \
  X(FlashLVatWT)                           \
  X(GasDensity_PPR78)                      \
  X(GasDynamicViscosity_PPR78)             \
  X(GasMolarEnthalpy_Derivatives_PPR78)    \
  X(GasMolarEnthalpy_PPR78)                \
  X(GasMolarEntropy_Derivatives_PPR78)     \
  X(GasMolarEntropy_PPR78)                 \
  X(GasMolarFreeEnthalpy_PPR78)            \
  X(GasN)                                  \
  X(GasPhi_Derivatives_PPR78)              \
  X(GasSpecificHeat_PPR78)                 \
  X(GasThermalConductivity_PPR78)          \
  X(Humidity)                              \
  X(HydrateLine)                           \
  X(LiquidDensity_PPR78)                   \
  X(LiquidMolarEnthalpy_Derivatives_PPR78) \
  X(LiquidMolarEnthalpy_PPR78)             \
  X(LiquidMolarEntropy_Derivatives_PPR78)  \
  X(LiquidMolarEntropy_PPR78)              \
  X(LiquidMolarFreeEnthalpy_PPR78)         \
  X(LiquidPhi_Derivatives_PPR78)           \
  X(MolecularWeight)                       \
  X(PhaseEnvelope)                         \
  X(WaterDewLine)                          \
  X(WaterDewPressure)                      \
  X(WaterDewTemperature)                   \
  X(WetGasComposition)

struct Exports {
#define KESTRUNE_HOST_MEMBER(name) decltype(&::name) name = nullptr;
  KESTRUNE_HOST_EXPORTS(KESTRUNE_HOST_MEMBER)
#undef KESTRUNE_HOST_MEMBER
};

// The library file beside the running program, or where an installation has it.
std::string default_library_path();
// The files of a library: itself and its two siblings in its folder, whether they are there or not.
std::vector<std::string> library_files(const std::string& path);

// Opens a library file and resolves all exports; InputError that names the file and what is missing. The
// library stays open until the program ends, for it keeps addresses of the host's buffers.
Exports load_library(const std::string& path);

// The petroleum entries of the tools library.
struct PetroleumTools {
  decltype(&::CalcKUOP) CalcKUOP = nullptr;
  decltype(&::CalcSG) CalcSG = nullptr;
  decltype(&::MeABP) MeABP = nullptr;
};

// Opens the tools library that belongs to a calculation library; InputError as above.
PetroleumTools load_petroleum_tools(const std::string& library_path);

}  // namespace kestrune::host

#endif
