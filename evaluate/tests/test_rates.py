"""The limits against exact sums, and against draws from populations whose rate is known."""
import fractions
import math

import numpy as np
import pytest

from videoid_evaluate import rates


def tail_sum(errors: int, trials: int, share: fractions.Fraction) -> fractions.Fraction:
    """Exactly the chance of `errors` or more."""
    return sum(
        (math.comb(trials, k) * share**k * (1 - share) ** (trials - k) for k in range(errors, trials + 1)),
        start=fractions.Fraction(0),
    )


@pytest.mark.parametrize("errors, trials", [(0, 40), (1, 40), (3, 100), (20, 40), (40, 40), (5, 300)])
def test_limits_are_where_the_exact_tails_are(errors: int, trials: int) -> None:
    lower, upper = rates.clopper_pearson(errors, trials)
    if errors > 0:
        assert float(tail_sum(errors, trials, fractions.Fraction(lower))) == pytest.approx(0.025, rel=1e-6)
    if errors < trials:
        below = 1 - tail_sum(errors + 1, trials, fractions.Fraction(upper))
        assert float(below) == pytest.approx(0.025, rel=1e-6)


@pytest.mark.parametrize("share, persons, each, alike", [(0.02, 40, 5, 0.5), (0.1, 100, 10, 0.2), (0.2, 50, 1, 0.5)])
def test_limits_cover_the_true_rate_of_people_who_differ(share: float, persons: int, each: int, alike: float) -> None:
    random = np.random.default_rng(7)
    spread = 1 / alike - 1
    names = np.repeat([f"p{n}" for n in range(persons)], each)
    covered, draws = 0, 2000
    for _ in range(draws):
        errors = random.binomial(each, random.beta(share * spread, (1 - share) * spread, persons))
        failed = np.arange(each) < errors[:, None]
        rate = rates.of_persons(failed.ravel(), names)
        covered += rate.lower <= share <= rate.upper
    assert covered / draws >= 0.94


def test_pairs_of_few_persons_are_worth_less_than_their_number() -> None:
    random = np.random.default_rng(3)
    lambs = random.random(40) < 0.2  # those whom others are taken for
    one, other = (part.ravel() for part in np.meshgrid(np.arange(40), np.arange(40)))
    different = one < other
    one, other = one[different], other[different]
    wrong = lambs[one] & lambs[other]
    pairs = rates.of_pairs(wrong, one.astype(str), other.astype(str))
    lower, upper = rates.clopper_pearson(int(wrong.sum()), len(wrong))
    assert pairs.lower < lower and pairs.upper > upper
    assert pairs.method == "bootstrap over persons"


@pytest.mark.parametrize(
    "rate, persons, method",
    [
        (rates.of_persons([False] * 3, ["a", "b", "c"]), 3, "Clopper-Pearson"),
        (rates.of_persons([False] * 6, ["a", "a", "b", "b", "c", "c"]), 3, "Clopper-Pearson over independent persons"),
        (rates.of_pairs([False] * 2, ["a", "c"], ["b", "d"]), 2, "Clopper-Pearson"),
        (rates.of_pairs([False] * 3, ["a", "a", "b"], ["b", "c", "c"]), 1, "Clopper-Pearson over independent persons"),
    ],
)
def test_without_an_error_only_independent_persons_count(rate: rates.Rate, persons: int, method: str) -> None:
    assert (rate.persons, rate.method) == (persons, method)
    assert (rate.lower, rate.upper) == rates.clopper_pearson(0, persons)


def test_one_error_makes_nobody_surer_than_none() -> None:
    names = [f"p{n % 20}" for n in range(400)]
    none = rates.of_persons([False] * 400, names)
    one = rates.of_persons([True] + [False] * 399, names)
    assert one.upper >= none.upper


def test_nothing_is_known_without_a_trial() -> None:
    rate = rates.of_persons([], [])
    assert (rate.lower, rate.upper, rate.share) == (0.0, 1.0, None)
