! One wrong call, chosen by the argument: the binding stops the program before the library is called.
program wrong
  use, intrinsic :: iso_c_binding
  use kestrune
  implicit none
  real(c_double), target :: table(2, KV_TABLE_COLUMNS) = 0, larger(3, KV_TABLE_COLUMNS) = 0
  integer(c_int32_t), parameter :: big = 40000 ! its square does not fit 32 bits
  integer(c_int32_t) :: counts(2 * big) = 0
  real(c_double) :: z(2) = 0.5d0, x(2), y(2), K(2), beta
  integer(c_int32_t) :: status
  type(MixtureRecord) :: gas
  character(10) :: what
  call get_command_argument(1, what)
  gas = new_mixture(table)
  if (what == "section") gas = new_mixture(larger(1:2, :))
  if (what == "big") call ConvertPPR78GroupData(big, 2, counts, [z, z], [z, z])
  if (what == "record") gas = MixtureRecord()
  if (what == "absent") then
    status = LiquidPhi_Derivatives_PPR78(300d0, 1d0, z, gas, 2, KV_DERIV_T, x)
  else
    status = FlashLVatTP(300d0, 1d0, z, gas, c_null_ptr, 1, beta, x, y, K(1:merge(1, 2, what == "length")))
  end if
  print *, "not stopped:", status
end program
