"""Identities, published values and behaviour of the package; every number comes from outside of what it checks."""

import copy
import os
import pickle
import signal
import threading
import warnings

import kestrune
import numpy as np
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

R = 8.314462618  # J/(mol K), CODATA 2018
GAS = {"N2": 0.02, "methane": 0.80, "ethane": 0.09, "propane": 0.05, "nC4": 0.03, "nC6": 0.01}
WET = {"methane": 0.7, "n-octane": 0.2, "water": 0.1}


@pytest.fixture(scope="module")
def gas():
    return kestrune.Mixture(GAS)


@pytest.fixture(scope="module")
def grid(gas):
    return gas.flash(T=np.linspace(160.0, 320.0, 9)[:, None], P=np.array([5e5, 30e5, 60e5, 200e5]))


def same(a, b):
    """Equal to the last bit, states without an answer too."""
    pairs = [(a.T_si, b.T_si), (a.P_si, b.P_si), (np.asarray(a.status), np.asarray(b.status))]
    pairs += [pair for p, q in zip(a, b) for pair in ((p.fraction, q.fraction), (p.x, q.x))]
    return all(np.array_equal(u, v, equal_nan=True) for u, v in pairs)


@pytest.mark.parametrize(
    "components, T, P",
    [
        (GAS, 230.0, 40e5),
        (WET, 300.0, 50e5),
        ({"CO2": 0.7, "nC10": 0.3}, 290.0, 30e5),
        ({"CO2": 0.9, "nC10": 0.1}, 240.0, 30e5),  # two liquids
    ],
)
@pytest.mark.parametrize("phases", [2, 3])
def test_phases_balance_and_have_equal_fugacities(components, T, P, phases):
    mixture = kestrune.Mixture(components)
    state = mixture.flash(T, P, phases=phases)
    present = [p for p in state if p.fraction > 0.0]
    assert len(present) >= 2
    assert sum(p.fraction * p.x for p in present) == pytest.approx(mixture.z, abs=1e-12)
    logs = []
    for p in present:
        with np.errstate(divide="ignore"):  # of a fraction next to nothing a few digits are left
            logs.append(np.where(p.x > 1e-12, np.log(p.x) + p.ln_phi(), np.nan))
    shared = ~np.isnan(logs).any(axis=0)
    assert shared.sum() >= 2 and np.ptp(logs, axis=0)[shared].max() < 1e-8


def test_second_liquid_needs_three_phases():
    wet = kestrune.Mixture(WET)
    state = wet.flash(300.0, 50e5)
    assert (state.liquid.aqueous, state.liquid2.aqueous) == (False, True)
    assert state.liquid_fraction(aqueous=True) == state.liquid2.fraction > 0.09
    assert state.liquid.density < state.liquid2.density
    alone = kestrune.Mixture({"water": 1.0}).flash(300.0, 50e5)
    assert alone.liquid.fraction == 1.0 and alone.liquid2.fraction == 0.0 and np.isnan(alone.liquid2.x).all()


@pytest.mark.parametrize("phase, T, P", [("gas", 320.0, 30e5), ("liquid", 180.0, 60e5)])
def test_properties_are_derivatives_of_each_other(gas, phase, T, P):
    p = gas.properties(T, P, phase)
    hot, cold = (gas.properties(T + d, P, phase) for d in (0.01, -0.01))
    dense, thin = (gas.properties(T, P * (1.0 + d), phase) for d in (1e-5, -1e-5))
    volume_slope = (hot.molar_volume - cold.molar_volume) / 0.02
    density_slope = (dense.density - thin.density) / (2e-5 * P)
    assert p.Z == pytest.approx(P * p.molar_volume / (R * T), rel=2e-5)  # R of the library has five digits
    assert p.density * p.molar_volume == pytest.approx(1e-3 * p.molar_mass, rel=1e-12)
    assert p.free_enthalpy == pytest.approx(p.enthalpy - T * p.entropy, rel=1e-9)
    assert p.Cp == pytest.approx((hot.enthalpy - cold.enthalpy) / 0.02, rel=1e-6)
    assert p.Cp == pytest.approx(T * (hot.entropy - cold.entropy) / 0.02, rel=1e-5)
    assert p.compressibility == pytest.approx(density_slope / p.density, rel=1e-5)
    assert p.speed_of_sound**2 == pytest.approx(p.Cp / p.Cv / density_slope, rel=1e-4)
    assert p.joule_thomson == pytest.approx((T * volume_slope - p.molar_volume) / p.Cp, rel=1e-3)
    assert np.isnan(p.viscosity) == (phase == "liquid")


@pytest.mark.parametrize("name", ["methane", "propane", "nC5", "CO2", "nitrogen", "toluene"])
def test_pure_components_meet_their_constants(name):
    (component,) = kestrune.Mixture({name: 1.0}).components
    pure = kestrune.Mixture({name: 1.0})
    assert pure.critical()[:2] == pytest.approx((component.Tc, component.Pc), rel=1e-9)
    if name != "CO2":  # its boiling point at 1 atm is no liquid's
        assert pure.bubble(P=101325.0).T == pytest.approx(component.Tb, abs=1.0)
    at_07 = pure.bubble(T=0.7 * component.Tc).P / component.Pc  # what the acentric factor is defined by
    assert -np.log10(at_07) - 1.0 == pytest.approx(component.omega, abs=0.01)


@settings(deadline=None, max_examples=60, derandomize=True)
@given(T=st.floats(170.0, 400.0), P=st.floats(1e5, 120e5), heavy=st.floats(0.0, 1.0), phases=st.sampled_from([2, 3]))
def test_flash_comes_back_from_what_it_gave(T, P, heavy, phases):
    mixture = kestrune.Mixture({"methane": 1.0, "propane": 0.3, "nC6": 0.2 * heavy + 1e-3})
    state = mixture.flash(T, P, phases=phases)
    assert mixture.flash(H=state.enthalpy, P=P, phases=phases).T == pytest.approx(T, abs=1e-4)
    assert mixture.flash(S=state.entropy, P=P, phases=phases).T == pytest.approx(T, abs=1e-4)
    if 0.01 < state.beta < 0.99:
        again = mixture.flash(beta=state.beta, P=P, phases=phases)
        assert mixture.flash(again.T, P, phases=phases).beta == pytest.approx(state.beta, abs=1e-5)
    assert same(state, mixture.flash(np.array([T]), P, phases=phases)[0])


def test_arrays_are_their_states_one_by_one(gas, grid):
    assert grid.shape == (9, 4) and grid.vapour.x.shape == (9, 4, 6) and grid.ok.all()
    for index in [(0, 0), (3, 1), (8, 3)]:
        assert same(grid[index], gas.flash(grid.T[index], grid.P[index]))
    assert grid.vapour.density[8, 1] == grid[8, 1].vapour.density
    assert grid.enthalpy[3, 1] == pytest.approx(grid[3, 1].enthalpy, rel=1e-14)
    assert same(grid[3], gas.flash(grid.T[3], grid.P[3])) and len(grid[3]) == 4
    square = gas.flash(np.full((2, 6), 230.0), np.linspace(5e5, 60e5, 6))  # as many columns as components
    assert np.array_equal(square[..., 1].liquid.x, square.liquid.x[:, 1])
    feeds = np.array([gas.z, gas.z[::-1]])
    two = gas.flash(T=230.0, P=40e5, z=2.5 * feeds)
    assert same(two[0], gas.flash(T=230.0, P=40e5, z=gas.z)) and two.molar_mass[0] == pytest.approx(gas.molar_mass)
    assert two.beta[1] == pytest.approx(kestrune.Mixture(dict(zip(gas.names, gas.z[::-1]))).flash(230.0, 40e5).beta)
    assert gas.flash(T=np.zeros((0, 3)), P=1e5).vapour.x.shape == (0, 3, 6)


def test_results_are_not_what_later_ones_come_from(gas):
    state = gas.flash([200.0, 230.0], 40e5)
    density, volume = state.density.copy(), state.vapour.molar_volume
    volume *= 1e6
    assert np.array_equal(state.density, density) and np.array_equal(state.vapour.molar_volume, 1e-6 * volume)
    for array in (state.T_si, state.status, state.beta, state.liquid.x, state.vapour.in_si("Z"), gas.z):
        with pytest.raises(ValueError, match="read-only"):
            array[0] = 1


def test_free_water_has_no_volume():
    wet = kestrune.Mixture(WET, free_water=True)
    state = wet.flash([300.0, 400.0], 50e5)
    water = state.liquid2
    assert water.fraction[0] > 0.09 and np.isfinite([water.enthalpy[0], state.enthalpy[0], state.liquid.density[0]]).all()
    assert np.isnan([water.density[0], water.Z[0], water.Cp[0], state.density[0], state.molar_volume[0]]).all()
    assert water.fraction[1] > 0.0 or np.isfinite(state.density[1])
    with pytest.raises(ValueError, match="phases=3"):
        wet.flash(300.0, 50e5, phases=2)


@pytest.mark.parametrize("phases", [2, 3])
def test_threads_change_nothing(gas, phases):
    random = np.random.default_rng(1)
    T, P = random.uniform(120.0, 350.0, 3000), random.uniform(1e5, 150e5, 3000)
    one = gas.flash(T, P, phases=phases, threads=1)
    for threads in (2, 5):
        assert same(one, gas.flash(T, P, phases=phases, threads=threads))
    density = one.vapour.density
    assert np.array_equal(density, gas.flash(T, P, phases=phases, threads=3).vapour.density, equal_nan=True)


def test_mixtures_in_threads_do_not_mix_their_group_data():
    mixtures = [kestrune.Mixture(c) for c in (GAS, WET, {"CO2": 0.5, "nC10": 0.5}, {"H2S": 0.3, "benzene": 0.7})]
    T = np.linspace(250.0, 330.0, 40)
    alone = [m.flash(T, 40e5, threads=1) for m in mixtures]
    wrong = []

    def work(k):
        for _ in range(10):
            if not same(alone[k % 4], mixtures[k % 4].flash(T, 40e5, threads=1 + k % 3)):
                wrong.append(k)
            mixtures[0].critical()

    threads = [threading.Thread(target=work, args=(k,)) for k in range(8)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    assert not wrong


@pytest.mark.skipif(not hasattr(os, "fork"), reason="no fork on Windows")
def test_a_forked_process_does_not_wait_for_threads_it_lacks(gas):
    other, done = kestrune.Mixture(WET), threading.Event()

    def work():
        while not done.is_set():
            gas.flash(np.linspace(200.0, 300.0, 3000), 40e5, threads=1)

    thread = threading.Thread(target=work)
    thread.start()
    try:
        for _ in range(5):
            child = os.fork()
            if child == 0:
                signal.alarm(20)
                os._exit(0 if other.flash(300.0, 50e5).liquid2.fraction > 0.09 else 1)
            assert os.waitpid(child, 0)[1] == 0
    finally:
        done.set()
        thread.join()


def test_copies_and_pickles_are_the_same(gas, grid):
    rich = kestrune.Mixture(WET, "mass", free_water=True, solubility=(7.0, 4400.0), units="C,bar", name="wet")
    for one in (copy.copy(rich), copy.deepcopy(rich), pickle.loads(pickle.dumps(rich))):
        assert one == rich and hash(one) == hash(rich) and one.names == rich.names and np.array_equal(one.z, rich.z) and one.units == rich.units
        assert same(one.flash(20.0, 50.0), rich.flash(20.0, 50.0)) and "wet" in repr(one.flash(20.0, 50.0))
    again = pickle.loads(pickle.dumps(grid))
    assert same(again, grid) and np.array_equal(again.vapour.density, grid.vapour.density, equal_nan=True)
    assert str(pickle.loads(pickle.dumps(kestrune.KestruneError(112, "x")))) == str(kestrune.KestruneError(112, "x"))


def test_units(gas):
    si, shown = gas.flash(T=233.15, P=40e5), gas.flash(T=-40.0, P=40.0, units="engineering")
    assert shown.enthalpy == pytest.approx(si.enthalpy / gas.molar_mass)  # kJ/kg
    assert shown.liquid.Cp == pytest.approx(si.liquid.Cp / si.liquid.molar_mass)
    assert shown.liquid.joule_thomson == pytest.approx(1e5 * si.liquid.joule_thomson)
    assert gas.dew(P=14.5037738, units="F,psia").T == pytest.approx((gas.dew(P=1e5).T - 273.15) * 1.8 + 32.0)
    assert gas.flash(H=shown.enthalpy, P=40.0, units="engineering").T == pytest.approx(-40.0, abs=1e-5)
    assert gas.flash(-40.0, 40.0, units="C,bar,kJ/kmol").enthalpy == pytest.approx(si.enthalpy)
    pint = pytest.importorskip("pint")
    q = pint.get_application_registry().Quantity
    state = gas.flash(T=q(-40.0, "degC"), P=q(4.0, "MPa"), units="pint")
    assert state.vapour.density.to("g/cm**3").magnitude == pytest.approx(1e-3 * si.vapour.density)
    pytest.importorskip("matplotlib").use("agg")
    assert gas.envelope(units="pint").plot(points=(state.T, state.P)).get_xlabel() == "temperature, K"
    assert gas.flash(H=q(shown.enthalpy, "kJ/kg"), P=40e5).T == pytest.approx(233.15, abs=1e-5)
    with pytest.raises(ValueError, match="pressure cannot be"):
        gas.flash(T=233.15, P=q(1.0, "m"))
    with pytest.raises(ValueError, match="z cannot be"):
        gas.flash(T=233.15, P=1e5, z=q(gas.z, "m"))
    (points,) = (k for k in gas.envelope(units="C,bar").plot(points=(q(300.0, "K"), q(3.0, "MPa"))).lines
                 if k.get_label() == "states")
    assert points.get_xydata()[0] == pytest.approx([26.85, 30.0])


def test_envelope_points_are_dew_and_bubble_points(gas):
    envelope = gas.envelope(quality=[0.9], points=30)
    for word, beta in (("dew", 1.0), ("bubble", 0.0)):
        T, P = (a[envelope.kind == word][3] for a in (envelope.T, envelope.P))
        at = gas.flash(beta=beta, T=T)
        assert at.P == pytest.approx(P, rel=1e-6) and at.vapour.fraction == beta
        assert np.isfinite(at.vapour.x).all() and np.isfinite(at.liquid.x).all()
    assert envelope.critical[0] == pytest.approx(gas.critical()[:2], rel=1e-6)
    assert envelope.cricondentherm[0] == pytest.approx(envelope.T.max(), abs=0.5)
    line = envelope.quality[0.9]
    k = len(line.T) // 3
    assert gas.flash(line.T[k], line.P[k]).beta == pytest.approx(0.9, abs=1e-5)
    assert len(envelope.to_frame()) == len(envelope.T) + len(line.T)


def test_water_and_hydrate(gas):
    T, P = np.array([260.0, 290.0]), 70e5
    saturation = gas.water.content(T, P)
    assert gas.water.dew(P=P, water=saturation.fraction).T == pytest.approx(T, abs=1e-3)
    assert gas.water.dew(T=290.0, water=saturation.fraction[1]).P == pytest.approx(P, rel=1e-4)
    # mg in a normal m3 of ideal gas: 44.6 mol of it
    assert saturation.content == pytest.approx(saturation.fraction * 18.01528e-3 * 101325.0 / (R * 273.15), rel=1e-4)
    assert gas.water.content(290.0, P, method="chart").fraction == pytest.approx(saturation.fraction[1], rel=0.15)
    bare = gas.hydrate(P=P).T
    assert gas.hydrate(T=bare).P == pytest.approx(P, rel=1e-9)
    W, M, K_H = 20.0, 62.068, 1297.0  # Hammerschmidt 1934: K_H W/(M (100 - W)) kelvin
    assert bare - gas.hydrate(P=P, inhibitor="MEG", percent=W).T == pytest.approx(K_H * W / (M * (100.0 - W)), rel=0.06)


ERRORS = [
    (lambda g: kestrune.Mixture({"methan": 1.0}), ValueError, "did you mean methane"),
    (lambda g: kestrune.Mixture({}), ValueError, "no component"),
    (lambda g: kestrune.Mixture({"methane": float("nan")}), ValueError, "finite"),
    (lambda g: kestrune.Mixture({"methane": -1}), ValueError, "negative"),
    (lambda g: kestrune.Mixture({"methane": None}), ValueError, "must be a number"),
    (lambda g: kestrune.Mixture({"methane": 1, "C1": 2}), ValueError, "given twice"),
    (lambda g: kestrune.Mixture(["methane", "ethane"]), TypeError, "mixture is given as"),
    (lambda g: kestrune.Mixture({"methane": 0.5, "O2": 0.5}), ValueError, "allow_missing_pairs"),
    (lambda g: kestrune.Mixture({"methane": 1}, "volume"), ValueError, "use mole or mass"),
    (lambda g: kestrune.Mixture({"methane": 1}, solubility=(1, 2)), ValueError, "free_water"),
    (lambda g: kestrune.Mixture({"methane": 1}, units="K,foo"), ValueError, "unknown unit of pressure"),
    (lambda g: g.flash(T=300.0), ValueError, "a flash is given T and P"),
    (lambda g: g.flash(T=300.0, P=1e5, beta=0.5), ValueError, "a flash is given T and P"),
    (lambda g: g.bubble(), ValueError, "one of them"),
    (lambda g: g.flash("300", 1e5), TypeError, "temperature is a number"),
    (lambda g: g.flash([1.0, 2.0], [1e5] * 3), ValueError, r"T \(2,\), P \(3,\)"),
    (lambda g: g.flash(300.0, 1e5, z=[1.0, 2.0]), ValueError, "6 fractions"),
    (lambda g: g.flash(300.0, 1e5, z=[-1.0] * 6), ValueError, "not negative"),
    (lambda g: g.flash(300.0, 1e5, z=["1"] * 6), TypeError, "z is a number"),
    (lambda g: g.flash(300.0, 1e5, z=[1j] * 6), TypeError, "z is a number"),
    (lambda g: g.flash(beta=1.5, P=20e5), kestrune.KestruneError, "9009"),
    (lambda g: g.properties(-5.0, 1e5).density, kestrune.KestruneError, "9004"),
    (lambda g: g.properties(300.0, np.nan).ln_phi(), kestrune.KestruneError, "9005"),
    (lambda g: setattr(g, "z", None), AttributeError, ""),
    (lambda g: kestrune.Mixture("methane=1\0"), ValueError, "NUL"),
    (lambda g: kestrune.Mixture({"methane": True}), ValueError, "must be a number"),
    (lambda g: kestrune.Mixture({"methane": 1}, settings=3), TypeError, "settings are given as"),
    (lambda g: g.flash(300.0, 1e5, threads="two"), ValueError, "threads"),
    (lambda g: g.hydrate(P=70e5, inhibitor="MEG", percent="20"), TypeError, "percent is a number"),
    (lambda g: g.hydrate(), ValueError, "hydrate point is given T or P"),
    (lambda g: g.water.dew(T=280.0, P=70e5), ValueError, "dew point is given T or P"),
    (lambda g: g.water.dew(P=-1.0, water=6e-5), kestrune.KestruneError, "9005"),
    (lambda g: g.water.content([280.0, 290.0], [70e5] * 3), ValueError, r"T \(2,\), P \(3,\)"),
    (lambda g: g.units.symbol("length"), ValueError, "no quantity"),
    (lambda g: g.flash([300.0], 1e5).to_frame("density"), TypeError, "list of names"),
    (lambda g: g.flash(300.0, 1e5, phases=4), ValueError, "2 or 3"),
    (lambda g: g.flash(300.0, 1e5, threads=0), ValueError, "threads"),
    (lambda g: g.flash(300.0, -1e5), kestrune.KestruneError, "at T = 300 K and P = -100000 Pa: .*pressure"),
    (lambda g: g.flash(-300, 40, units="C,bar"), kestrune.KestruneError, "at T = -300 C and P = 40 bar"),
    (lambda g: g.water.content(None, 70e5), TypeError, "temperature is a number .* not None"),
    (lambda g: g.hydrate(P=70e5, inhibitor="MEG"), ValueError, "needs percent="),
    (lambda g: g.bubble(P=900e5), kestrune.KestruneError, "116"),
    (lambda g: g.properties(300.0, 1e5, "solid"), ValueError, "'gas' or 'liquid'"),
    (lambda g: g.envelope(quality=[2.0]), ValueError, "between 0 and 1"),
    (lambda g: g.envelope(first_P=60e5, highest_P=50e5), ValueError, "first_P is below"),
    (lambda g: g.envelope(lowest_T=-1.0), ValueError, "lowest_T is a temperature above zero"),
    (lambda g: g.kij([300.0, 310.0]), ValueError, "one temperature"),
    (lambda g: g.hydrate(P=70e5, inhibitor="ethanol", percent=5.0), ValueError, "no hydrate inhibitor"),
    (lambda g: g.hydrate(T=400.0), kestrune.KestruneError, "151"),
    (lambda g: g.water.dew(P=70e5), ValueError, "needs water in the gas"),
]


@pytest.mark.parametrize("call, kind, text", ERRORS)
def test_bad_input_is_named(gas, call, kind, text):
    with warnings.catch_warnings(), pytest.raises(kind, match=text):
        warnings.simplefilter("error", kestrune.KestruneWarning)
        call(gas)


def test_states_without_an_answer_are_nan(gas):
    state = gas.flash(T=[300.0, np.nan, -5.0, 250.0], P=[1e5, 1e5, 1e5, np.inf])
    assert list(state.status) == [0, 9004, 9004, 9005] and list(state.ok) == [True, False, False, False]
    for value in (state.beta, state.vapour.density, state.enthalpy, state.vapour.x[:, 0], state.liquid2.fraction):
        assert np.isfinite(value[0]) or value is state.liquid2.fraction
        assert np.isnan(value[1:]).all()
    assert "2 x 9004" in state.status_text()
    masked = np.ma.array([300.0, 300.0], mask=[False, True])
    feeds = np.array([gas.z, np.where(gas.z > 0.5, np.nan, gas.z)])
    for found in (gas.flash(masked, 1e5), gas.flash(300.0, 1e5, z=feeds), gas.flash(beta=[0.5, -0.3], P=20e5)):
        assert list(found.ok) == [True, False] and np.isnan(found.vapour.density[1])
    assert list(gas.properties(300.0, [1e5, -1.0]).property_status("density")) == [0, 9005]
    for found, status in (
        (gas.water.content([280.0, 700.0, np.nan], 70e5)[::2], [0, 151, 9004]),
        (gas.water.dew(P=[70e5, -1.0], water=6e-5)[::2], [0, 9005]),
        (gas.hydrate(T=[280.0, 400.0, -1.0])[1:], [0, 151, 9004]),
        (gas.hydrate(P=[70e5, 2000e5, np.nan], units="C,bar")[::2], [151, 151, 9005]),
    ):
        assert list(found[1]) == status and list(np.isnan(found[0])) == [s != 0 for s in status]


def test_a_negative_heat_capacity_is_told_to_who_reads_it():
    mixture = kestrune.Mixture({"isopentane": 0.75, "water": 0.25})
    P = 104.7 * 101325.0
    for read in (
        lambda: mixture.properties(303.66, P).Cp,
        lambda: mixture.properties(303.66, P).speed_of_sound,
        lambda: mixture.properties([303.66, 600.0], [P, 1e5]).in_si("Cv"),
    ):
        with pytest.warns(kestrune.KestruneWarning, match="vapour.*: negative heat capacity") as told:
            value = read()
        assert len(told) == 1 and told[0].filename == __file__
    assert value[0] < 0.0 < value[1] and "in 1 of 2 states" in str(told[0].message)
    with warnings.catch_warnings():
        warnings.simplefilter("error", kestrune.KestruneWarning)
        mixture.properties(303.66, P).density


def test_tables_and_pictures(gas, grid):
    pandas = pytest.importorskip("pandas")
    frame = grid.to_frame(["density", "viscosity"])
    assert isinstance(frame, pandas.DataFrame) and len(frame) == 36
    assert frame["vapour.density"][33] == grid.vapour.density[8, 1]
    assert np.allclose(frame.filter(regex=r"^vapour\.(nit|met|eth|pro|n-)").sum(axis=1).replace(0.0, 1.0), 1.0)
    pytest.importorskip("matplotlib").use("agg")
    axes = grid.plot()
    labels = [t.get_text() for t in axes.get_legend().get_texts()]
    assert {"dew", "bubble", "critical", "states"} <= set(labels) and axes.get_ylabel() == "pressure, Pa"


def test_mixtures_as_the_command_line_reads_them(tmp_path):
    file = tmp_path / "gas.csv"
    file.write_text("component,mass%\nmethane, 80\npropane, 20\n", encoding="utf-8")
    wanted = kestrune.Mixture({"methane": 80, "propane": 20}, "mass")
    for one in (kestrune.Mixture.from_file(file), kestrune.Mixture("methane=80,propane=20", "mass")):
        assert one.z == pytest.approx(wanted.z, rel=1e-14)
    assert kestrune.Mixture("methane=80", name="mine").title_or_names == "mine"
    whole = {"name": "gas", "basis": "mass", "components": {"methane": np.float32(80), "propane": "20"}}
    assert np.array_equal(kestrune.Mixture(whole).z, wanted.z)
    assert wanted.notes == ["amounts summed to 100 and were normalised"]
    sections = "[fraction C7+]\nM = 218\nSG = 0.85\npieces = 2\n[mixture]\nmethane 0.9\nC7+ 0.1\n"
    assert kestrune.Mixture(sections).names == ("methane", "C7+ 1", "C7+ 2")
    with pytest.raises(ValueError, match="not by mass"):
        kestrune.Mixture("component,mol%\nmethane,90\npropane,10\n", "mass")
    assert "ethylene glycol" in [c.name for c in kestrune.components("glycol")]


def test_a_component_of_ones_own_is_what_it_is_described_as():
    c = kestrune.Mixture("nC10=1").components[0]
    own = {"M": c.molar_mass, "Tc": f"{c.Tc!r} K", "Pc": f"{c.Pc!r} Pa", "omega": c.omega, "groups": "CH3:2 CH2:8"}
    both = {"methane": 0.6, "cut": 0.4}
    cut = kestrune.Mixture({"components": both, "own_components": {"cut": {**own, "CAS": c.cas}}})
    decane = kestrune.Mixture({"methane": 0.6, "nC10": 0.4})
    assert cut.flash(320.0, 50e5).beta == pytest.approx(decane.flash(320.0, 50e5).beta, rel=1e-9)
    assert pickle.loads(pickle.dumps(cut)).water.content(300.0, 50e5) == cut.water.content(300.0, 50e5)
