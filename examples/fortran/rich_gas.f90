! A rich gas: flash, dew point, extremes of the envelope, properties of its vapour. How to build it: docs/hosts.md.
program rich_gas
  use, intrinsic :: iso_c_binding
  use kestrune
  implicit none
  ! The gas of data/components.csv and data/ppr78_interactions.csv, by tools/make_bindings.py.
  integer(c_int32_t), parameter :: n = 6, groups = 5
  real(c_double), parameter :: z(n) = [0.76d0, 0.09d0, 0.06d0, 0.04d0, 0.03d0, 0.02d0] ! methane, ethane, propane, n-butane, n-pentane, carbon dioxide
  integer, parameter :: column_numbers(12) = [2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 41, 43]
  real(c_double), parameter :: columns(n, 12) = reshape([ &
      16.04246d0, 30.06904d0, 44.09562d0, 58.12220d0, 72.14878d0, 44.00950d0, & ! 2: molar mass, g/mol
      90.6941d0, 90.368d0, 85.525d0, 134.895d0, 143.47d0, 216.592d0, & ! 3: triple point, K
      111.6672d0, 184.5686d0, 231.0362d0, 272.6599d0, 309.2093d0, 194.67d0, & ! 4: normal boiling point, K
      190.564d0, 305.32d0, 369.83d0, 425.12d0, 469.7d0, 304.21d0, & ! 5: critical temperature, K
      45.388601d0, 48.082902d0, 41.924500d0, 37.463607d0, 33.259314d0, 72.864545d0, & ! 6: critical pressure, atm
      98.6d0, 145.5d0, 200.0d0, 255.0d0, 313.0d0, 94.0d0, & ! 7: critical volume, cm3/mol
      0.28620d0, 0.27924d0, 0.27630d0, 0.27385d0, 0.27010d0, 0.27438d0, & ! 8: critical compressibility factor
      0.0115478d0, 0.099493d0, 0.152291d0, 0.200164d0, 0.251506d0, 0.223621d0, & ! 9: acentric factor
      0.0d0, 0.0d0, 0.08d0, 0.0d0, 0.0d0, 0.0d0, & ! 10: dipole moment, debye
      90.69d0, 90.35d0, 85.47d0, 134.86d0, 143.42d0, 216.58d0, & ! 11: lowest temperature of the vapour pressure, K
      0.0d0, 0.0d0, 0.0d0, 0.0d0, 0.0d0, 0.0d0, & ! 41: family code
      74828.0d0, 74840.0d0, 74986.0d0, 106978.0d0, 109660.0d0, 124389.0d0 & ! 43: CAS number
      ], [n, 12])
  ! Groups CH3, CH2, CH4, C2H6, CO2: how often in each component, and their interactions in MPa.
  integer(c_int32_t), parameter :: counts(groups * n) = [ &
      0, 0, 1, 0, 0, &
      0, 0, 0, 1, 0, &
      2, 1, 0, 0, 0, &
      2, 2, 0, 0, 0, &
      2, 3, 0, 0, 0, &
      0, 0, 0, 0, 1]
  real(c_double), parameter :: A(groups * groups) = [ &
      0.0d0, 0.0d0, 0.0d0, 0.0d0, 0.0d0, &
      65.54d0, 0.0d0, 0.0d0, 0.0d0, 0.0d0, &
      28.48d0, 37.75d0, 0.0d0, 0.0d0, 0.0d0, &
      3.775d0, 29.85d0, 9.951d0, 0.0d0, 0.0d0, &
      144.8d0, 141.4d0, 136.6d0, 136.2d0, 0.0d0]
  real(c_double), parameter :: B(groups * groups) = [ &
      0.0d0, 0.0d0, 0.0d0, 0.0d0, 0.0d0, &
      105.7d0, 0.0d0, 0.0d0, 0.0d0, 0.0d0, &
      20.25d0, 74.81d0, 0.0d0, 0.0d0, 0.0d0, &
      8.922d0, 65.88d0, 13.73d0, 0.0d0, 0.0d0, &
      401.5d0, 237.1d0, 214.8d0, 235.7d0, 0.0d0]
  ! end of the gas
  integer(c_int32_t), parameter :: capacity = 500
  real(c_double), parameter :: T = 260, P = 40 ! K, atm
  real(c_double), target :: table(n, KV_TABLE_COLUMNS) = 0
  real(c_double) :: beta, x(n), y(n), K(n), dew_T, dew_x(n), dew_y(n)
  real(c_double) :: T_curve(capacity), P_curve(capacity), kind_of(capacity), extremes(4)
  real(c_double) :: density, d_dT, d_dP, d2, H, Cp, Cv, sound, joule_thomson, viscosity
  integer(c_int32_t) :: points, critical_points
  type(MixtureRecord) :: gas
  integer :: i

  table(:, column_numbers) = columns
  gas = new_mixture(table)
  call ConvertPPR78GroupData(n, groups, counts, A, B)

  call require("flash", FlashLVatTP(T, P, z, gas, c_null_ptr, 1, beta, x, y, K))
  call show("vapour_fraction", beta)
  do i = 1, n
    call show("K", K(i))
  end do

  dew_T = 0
  call require("dew point", FlashLVatWP(1d0, P, z, gas, c_null_ptr, 1, dew_T, dew_x, dew_y, K))
  call show("dew_temperature", dew_T)

  call require("envelope", PhaseEnvelope(z, gas, c_null_ptr, 0, 0d0, 0d0, 200d0, 0, capacity, 1d0, 0d0, T_curve, P_curve, &
    kind_of, points, critical_points, extremes(1), extremes(2), extremes(3), extremes(4)))
  call show("cricondentherm_T", extremes(1))
  call show("cricondentherm_P", extremes(2))
  call show("cricondenbar_T", extremes(3))
  call show("cricondenbar_P", extremes(4))

  call require("density", GasDensity_PPR78(T, P, y, gas, density, d_dT, d_dP, d2))
  call require("enthalpy", GasMolarEnthalpy_PPR78(T, P, y, gas, H))
  call require("heat", GasSpecificHeat_PPR78(T, P, y, gas, Cp, Cv, sound, joule_thomson))
  call require("viscosity", GasDynamicViscosity_PPR78(T, P, y, gas, viscosity))
  call show("density", density)
  call show("enthalpy", H)
  call show("speed_of_sound", sound)
  call show("viscosity", viscosity)

contains

  subroutine show(name, value)
    character(*), intent(in) :: name
    real(c_double), intent(in) :: value
    print '(a18, 1x, es25.17e3)', adjustl(name // repeat(" ", 18)), value
  end subroutine

  subroutine require(what, status)
    character(*), intent(in) :: what
    integer(c_int32_t), intent(in) :: status
    if (status /= KV_OK) error stop what // ": " // status_text(status)
  end subroutine

end program
