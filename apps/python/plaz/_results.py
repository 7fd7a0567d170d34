"""What the hub's functions tell."""

from typing import NamedTuple, Tuple


class Message(NamedTuple):
    """A message of the hub."""

    id: str
    label: str
    text: str
    arguments: Tuple[str, ...]


class ActionResult(NamedTuple):
    """What became of an item.

    outcome: "installed", "removed", "kept" (its files stay: others need it, or it is shipped), "updated", "up-to-date"
    or "failed".
    previous_revision: of an update, the one that was installed before.
    directory: where it is installed; empty when it is not.
    """

    store: str
    name: str
    revision: str
    previous_revision: str
    directory: str
    outcome: str


class StoreResult(NamedTuple):
    """What became of a store.

    outcome: "refreshed", "outdated", "up-to-date", "unknown" or "failed".
    directory: the store's area.
    items: how many revisions its catalog lists.
    """

    store: str
    outcome: str
    directory: str
    items: int
