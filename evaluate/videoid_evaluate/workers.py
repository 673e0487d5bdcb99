"""Where the program runs: on all cores of this machine, or on a Dask cluster that exists."""
from __future__ import annotations

import contextlib
import dataclasses
import ipaddress
import urllib.parse
from collections.abc import Callable, Iterator, Mapping

import distributed
from tqdm import tqdm

from videoid_evaluate.complaint import Complaint
from videoid_evaluate.manifest import Session
from videoid_evaluate.program import Program, show
from videoid_evaluate.records import Outcome

@dataclasses.dataclass(frozen=True)
class Certificates:
    """PEM files by which scheduler, workers and this program know each other."""

    ca: str
    cert: str
    key: str


def check_address(address: str, certificates: Certificates | None) -> None:
    """Films of people leave the machine encrypted, or not at all."""
    try:
        parts = urllib.parse.urlsplit(address)
        has_port = parts.port is not None
    except ValueError:
        has_port = False
    if not has_port:
        raise Complaint(f"'{address}' is no address of a scheduler: write tls://HOST:PORT.")
    if parts.scheme == "tls":
        if certificates is None:
            raise Complaint(f"{address} needs --tls-ca, --tls-cert and --tls-key.")
        return
    if parts.scheme == "tcp" and _is_loopback(parts.hostname or ""):
        return
    raise Complaint(f"'{address}' is no safe scheduler: write tls://HOST:PORT (tcp:// is taken on this machine only).")


def _is_loopback(host: str) -> bool:
    if host == "localhost":
        return True
    try:
        return ipaddress.ip_address(host).is_loopback
    except ValueError:
        return False


@contextlib.contextmanager
def connected(
    scheduler: str | None, certificates: Certificates | None, workers: int | None
) -> Iterator[distributed.Client]:
    if scheduler is None:
        with distributed.LocalCluster(
            n_workers=workers, threads_per_worker=1, dashboard_address=None, host="127.0.0.1"
        ) as cluster, distributed.Client(cluster) as client:
            yield client
        return
    check_address(scheduler, certificates)
    security = None
    if certificates is not None:
        security = distributed.Security(
            tls_ca_file=certificates.ca,
            tls_client_cert=certificates.cert,
            tls_client_key=certificates.key,
            require_encryption=scheduler.startswith("tls"),
        )
    try:
        client = distributed.Client(scheduler, security=security, timeout="20s")
    except (OSError, TimeoutError) as fault:
        raise Complaint(f"the scheduler at {scheduler} does not answer ({fault}): start it, or leave --scheduler out.") from fault
    with client:
        yield client


def show_all(
    client: distributed.Client,
    sessions: Mapping[str, Session],
    program: Program,
    done: Callable[[str, Outcome], None],
) -> list[str]:
    """Shows each session to the program, hands each outcome to `done` once, as it comes, and returns what went wrong
    with the others."""
    futures = {
        client.submit(show, session, program, key=f"show-{key}", pure=True): key
        for key, session in sessions.items()
    }
    faults = []
    bar = tqdm(total=len(futures), unit="session", smoothing=0.1)
    for future in distributed.as_completed(futures):
        if future.status == "finished":
            done(futures[future], Outcome.from_json(future.result()))
        else:
            faults.append(f"{sessions[futures[future]].film}: {future.exception()}")
        bar.update()
    bar.close()
    return faults
