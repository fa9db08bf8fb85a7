#!/usr/bin/env python3
"""Writes tests/data/cubic_roots.csv: compressibility factors of cubic equations of state to 25 digits.

For the doubles A and B of each row the cubic

    Z^3 + [(u-1) B - 1] Z^2 + [A + (w-u) B^2 - u B] Z - [A + w B (B+1)] B = 0

is formed and solved in 140-digit arithmetic. The row gives the root and the status that belong to the phase
asked for (1 gas: largest root above B, 2 liquid: smallest root above B):

    0   three roots above B, or the only one lies on the side asked for of the inflection point
    1   only one root above B, on the other side
    51  no root above B (Z is 0 in the file)

bound is the forward error that a backward error of 8 eps allows: the distance from Z to the ends of the interval
around it where |f| <= 8 eps (Z^3 + T1 Z^2 + T2 Z + T3), the T being the sums of the absolute terms of the
coefficients. It is 8 eps times the condition number where the root is isolated, and about the square root of
that at a double root.

Where that backward error can merge or separate two roots, or move the only root across the inflection point,
the row has a second answer (status2, Z2, bound2) that is as right as the first; status2 is -1 without one.
"""

import argparse
import pathlib
import random

from mpmath import mp, mpf, nstr, sqrt

mp.dps = 140
EPS = mpf(2) ** -52
BACKWARD = 8 * EPS


def coefficients(u, w, A, B):
    c1 = (u - 1) * B - 1
    c2 = A + (w - u) * B**2 - u * B
    c3 = -(A + w * B * (B + 1)) * B
    return c1, c2, c3


def value(c, z):
    return ((z + c[0]) * z + c[1]) * z + c[2]


def allowed(u, w, A, B, z):
    """Residual of a backward error of 8 eps in all terms."""
    t1 = abs(u - 1) * B + 1
    t2 = A + abs(w - u) * B**2 + abs(u) * B
    t3 = (A + abs(w) * B * (B + 1)) * B
    z = abs(z)
    return BACKWARD * (((z + t1) * z + t2) * z + t3)


def newton(c, z):
    """From a point where f and f'' have one sign, Newton's method goes to the root without passing it."""
    for _ in range(20000):
        slope = (3 * z + 2 * c[0]) * z + c[1]
        if slope == 0:
            return z
        step = value(c, z) / slope
        z -= step
        if abs(step) <= abs(z) * mpf(10) ** -100:
            return z
    raise ArithmeticError("no convergence")


def stationary(c):
    d = c[0] ** 2 - 3 * c[1]
    if d <= 0:
        return None
    return (-c[0] - sqrt(d)) / 3, (-c[0] + sqrt(d)) / 3


def real_roots(c):
    """Real roots in rising order."""
    far = 1 + max(abs(v) for v in c)
    inflection = -c[0] / 3
    s = stationary(c)
    if s is None:
        return [newton(c, far if value(c, inflection) < 0 else -far)]
    roots = []
    if value(c, s[0]) > 0:
        roots.append(newton(c, -far))
    if value(c, s[0]) > 0 > value(c, s[1]):
        roots.append(newton(c, inflection))
    if value(c, s[1]) < 0:
        roots.append(newton(c, far))
    return roots


def reach(c, z, e):
    """Largest distance from z inside the interval around it with |f| <= e."""
    ends = [r for sign in (-1, 1) for r in real_roots((c[0], c[1], c[2] + sign * e))]
    below = [z - r for r in ends if r < z]
    above = [r - z for r in ends if r > z]
    return max(min(below), min(above)) if below and above else (min(below or above))


def answers(u, w, A, B, phase):
    """First and, where there is one, second (status, Z, bound)."""
    u, w, A, B = mpf(u), mpf(w), mpf(A), mpf(B)
    c = coefficients(u, w, A, B)
    inflection = -c[0] / 3
    above = [r for r in real_roots(c) if r > B]
    if not above:
        return [(51, mpf(0), mpf(0))]

    def bound(z):
        return reach(c, z, allowed(u, w, A, B, z))

    def single(z):
        return (0 if (z > inflection) == (phase == 1) else 1), z, bound(z)

    z = above[-1] if phase == 1 else above[0]
    first = (0, z, bound(z)) if len(above) == 3 else single(z)
    result = [first]
    s = stationary(c)
    merging = s[1 if phase == 1 else 0] if s else None
    if len(above) == 1 and abs(z - inflection) <= first[2]:
        result.append((1 - first[0], z, first[2]))
    elif merging is not None and merging > B and abs(value(c, merging)) <= allowed(u, w, A, B, merging):
        if len(above) == 3:
            result.append(single(above[0] if phase == 1 else above[-1]))
        elif (z < merging) == (phase == 1):
            result.append((0, merging, bound(merging)))
    return result


def spinodal(u, w, V):
    """A, B with the double root Z = B V, V the volume in co-volumes; None where the pressure is not positive."""
    V = mpf(V)
    q = (V * V + u * V + w) ** 2 / ((V - 1) ** 2 * (2 * V + u))
    B = 1 / (V - 1) - q / (V * V + u * V + w)
    return (float(q * B), float(B)) if B > 0 else None


def states():
    """(u, w, A, B) of all rows; the same in every run."""
    draw = random.Random(20)
    out = []
    for i in range(-12, 9, 4):
        for j in range(-14, 5, 3):
            out.append((2, -1, draw.uniform(1, 10) * 10.0**i, draw.uniform(1, 10) * 10.0**j))
    for i in range(-12, 9, 8):
        for j in range(-14, 5, 6):
            out.append((1, 0, draw.uniform(1, 10) * 10.0**i, draw.uniform(1, 10) * 10.0**j))
    for _ in range(15):  # the states of gas processing
        B = 10.0 ** draw.uniform(-3.5, 0)
        out.append((2, -1, B * draw.uniform(1.5, 25), B))
    for u, w, volumes in (
        (2, -1, (2.5, 3.7, 3.9513, 3.9514, 4.3, 20, 1e7)),
        (1, 0, (3.0, 3.84732, 50)),
    ):
        for V in volumes:
            state = spinodal(u, w, V)
            if state is None:
                continue
            A, B = state
            for off in (0.0, 2e-16, -2e-16, 1e-14, 1e-11, -1e-11, -1e-7, 1e-3):
                out.append((u, w, A, B * (1 + off)))
    for B in (1e-14, 1e-2, 1e4):  # the ends of the ranges, without noise in the digits
        for A in (1e-12, 1.0, 1e8):
            out.append((2, -1, A, B))
    for A, B in ((100.0, 1.0), (1e6, 1e-3), (30.0, 0.25)):  # a model without a root above B
        out.append((1, -5, A, B))
    return out


def main():
    here = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--output", type=pathlib.Path, default=here / "tests/data/cubic_roots.csv")
    output = parser.parse_args().output
    lines = ["u,w,A,B,phase,status,Z,bound,status2,Z2,bound2"]
    for u, w, A, B in states():
        for phase in (1, 2):
            found = answers(u, w, A, B, phase)
            cells = [str(u), str(w), repr(A), repr(B), str(phase)]
            for status, z, bound in (found + [(-1, mpf(0), mpf(0))])[:2]:
                cells += [str(status), nstr(z, 25), nstr(bound, 4)]
            lines.append(",".join(cells))
    output.write_text("\n".join(lines) + "\n")
    print(f"{output}: {len(lines) - 1} rows")


if __name__ == "__main__":
    main()
