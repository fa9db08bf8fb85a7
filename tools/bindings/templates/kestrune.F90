! @MADE@
!
! The exports of @LIBRARY@ for Fortran 2018 (iso_c_binding). A procedure here has the name and the words of the export;
! it stops the program with a message, before the library is called, where an array has the wrong length, a derivative
! that mask asks for is absent, or the record has no table. Types are the compiler's business.
! A library of 32 bit is that of Windows: its procedures are stdcall (GNU Fortran; other compilers have words of their own).
! Units: K, atm, cal/mol, cal/(mol K), cm3/mol, g/cm3 unless a word says otherwise.
module kestrune
  use, intrinsic :: iso_c_binding
  implicit none
  private

  character(*), parameter, public :: kestrune_version = "@VERSION@"

  ! A mixture and the settings of its calculations: packed, hence bytes, with procedures to set them. All settings 0:
  ! the defaults.
  type, bind(C), public :: MixtureRecord
    integer(c_int8_t) :: bytes(0:@LAST@) = 0_c_int8_t
  end type

  ! Statuses.
@STATUSES@

  ! Columns of the component table.
@COLUMNS@

  ! Settings, routines of a host, phases and derivatives.
@CONSTANTS@

  ! Bytes at which the fields of MixtureRecord begin.
@OFFSETS@

  interface set_field
    module procedure set_double, set_integer
  end interface
  public :: new_mixture, set_field, set_free_water, status_text
@PUBLIC@

  ! Group data stay alive for the library.
  real(c_double), allocatable, target, save :: group_data(:)

  interface
@INTERFACES@
  end interface

contains

  ! Record of a component table(count, 43), which stays with the host and has to live as long as the record is used.
  function new_mixture(table) result(mixture)
    real(c_double), intent(inout), target :: table(:, :) ! a variable: the record points to it
    type(MixtureRecord) :: mixture
    integer(c_intptr_t) :: address
    integer :: width
    if (size(table, 2) < @TABLE_COLUMNS@) call stop_with("new_mixture", "table", "@TABLE_COLUMNS@ columns are needed")
    if (size(table, 1) < 1) call stop_with("new_mixture", "table", "at least one component is needed")
    if (.not. is_contiguous(table)) call stop_with("new_mixture", "table", "the section is not in one piece of memory")
    call set_integer(mixture, at_count, int(size(table, 1), c_int32_t))
    address = transfer(c_loc(table), address)
    width = storage_size(address) / 8
    mixture%bytes(at_table:at_table + width - 1) = transfer(address, mixture%bytes)
  end function

  ! Sets a field of doubles, field one of at_...
  subroutine set_double(mixture, field, value)
    type(MixtureRecord), intent(inout) :: mixture
    integer, intent(in) :: field
    real(c_double), intent(in) :: value
    mixture%bytes(field:field + 7) = transfer(value, mixture%bytes)
  end subroutine

  subroutine set_integer(mixture, field, value)
    type(MixtureRecord), intent(inout) :: mixture
    integer, intent(in) :: field
    integer(c_int32_t), intent(in) :: value
    mixture%bytes(field:field + 3) = transfer(value, mixture%bytes)
  end subroutine

  subroutine set_free_water(mixture, on)
    type(MixtureRecord), intent(inout) :: mixture
    logical, intent(in) :: on
    mixture%bytes(at_flags) = merge(1_c_int8_t, 0_c_int8_t, on)
  end subroutine

  function status_text(status) result(text)
    integer(c_int32_t), intent(in) :: status
    character(:), allocatable :: text
    select case (status)
@TEXTS@
    case default
      text = "unknown status"
    end select
  end function

  subroutine stop_with(procedure, word, reason)
    character(*), intent(in) :: procedure, word, reason
    error stop procedure // ": " // word // ": " // reason
  end subroutine

  ! Number of components; stops where the record cannot be worked with.
  function count_of(mixture, procedure) result(count)
    type(MixtureRecord), intent(in) :: mixture
    character(*), intent(in) :: procedure
    integer(c_int32_t) :: count
    count = transfer(mixture%bytes(0:3), count)
    if (count < 1 .or. all(mixture%bytes(at_table:at_table + storage_size(0_c_intptr_t) / 8 - 1) == 0)) &
      call stop_with(procedure, "mixture", "the record has no components or no table: see new_mixture")
  end function

  subroutine need(length, wanted, procedure, word)
    integer, intent(in) :: length
    integer(c_int64_t), intent(in) :: wanted
    character(*), intent(in) :: procedure, word
    character(80) :: reason
    if (length == max(wanted, 0_c_int64_t)) return
    write (reason, '(i0, " elements, ", i0, " are needed")') length, max(wanted, 0_c_int64_t)
    call stop_with(procedure, word, trim(reason))
  end subroutine

  subroutine need_derivative(present, mask, bit, procedure, word)
    logical, intent(in) :: present
    integer(c_int32_t), intent(in) :: mask
    integer, intent(in) :: bit
    character(*), intent(in) :: procedure, word
    if (iand(mask, bit) /= 0 .and. .not. present) call stop_with(procedure, word, "absent, but mask asks for it")
  end subroutine

  ! Hands over groups and group interactions, once, before any other calculation.
  ! counts(nG, nC): how often group k occurs in component i; A, B(nG, nG): interactions, MPa, upper triangle read.
  subroutine ConvertPPR78GroupData(nC, nG, counts, A, B)
    integer(c_int32_t), intent(in) :: nC, nG
    integer(c_int32_t), intent(in), contiguous :: counts(:)
    real(c_double), intent(in), contiguous :: A(:), B(:)
    real(c_double), allocatable, target :: fresh(:)
    type(c_ptr) :: storage(6)
    integer(c_int64_t) :: sizes(6), first
    integer :: k
    character(*), parameter :: me = "ConvertPPR78GroupData"
    if (nC < 1) call stop_with(me, "nC", "at least one component is needed")
    if (nG < 1) call stop_with(me, "nG", "at least one group is needed")
    if (int(nG, c_int64_t) * nC > huge(nC) / nC) call stop_with(me, "nC", "nG * nC * nC is more than 32 bits hold")
    call need(size(counts), int(nG, c_int64_t) * nC, me, "counts")
    call need(size(A), int(nG, c_int64_t) * nG, me, "A")
    call need(size(B), int(nG, c_int64_t) * nG, me, "B")
    sizes = int([1, size(A), size(A), size(counts), size(A), nG * nC * nC], c_int64_t)
    allocate (fresh(sum(sizes)))
    first = 1
    do k = 1, 6
      storage(k) = c_loc(fresh(first))
      first = first + sizes(k)
    end do
    call c_ConvertPPR78GroupData(nC, nG, counts, A, B, storage)
    call move_alloc(fresh, group_data)
  end subroutine

@PROCEDURES@
end module
