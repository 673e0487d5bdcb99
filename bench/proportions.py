"""Shares with their 95 % limits (Clopper-Pearson)."""
import math


def binomial_tail(k, n, p):
    """The chance of k or more of n."""
    if k <= 0:
        return 1.0
    logs = [math.lgamma(n + 1) - math.lgamma(i + 1) - math.lgamma(n - i + 1) + i * math.log(p) +
            (n - i) * math.log1p(-p) for i in range(k, n + 1)]
    return min(1.0, sum(math.exp(one) for one in logs))


def solve(rises, wanted):
    low, high = 1e-12, 1 - 1e-12
    for _ in range(60):
        middle = 0.5 * (low + high)
        low, high = (middle, high) if rises(middle) < wanted else (low, middle)
    return 0.5 * (low + high)


def limits(k, n):
    lower = 0.0 if k == 0 else solve(lambda p: binomial_tail(k, n, p), 0.025)
    upper = 1.0 if k == n else solve(lambda p: binomial_tail(k + 1, n, p), 0.975)
    return lower, upper


def share(k, n):
    if n == 0:
        return "-"
    lower, upper = limits(k, n)
    return f"{k}/{n} {100 * k / n:.1f} % ({100 * lower:.1f}-{100 * upper:.1f})"
