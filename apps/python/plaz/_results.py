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

    outcome: "installed", "removed", "kept" (its files stay: others need it, or it is shipped), "updated", "up-to-date",
    "repaired", "whole" (there was nothing to repair), "held", "unheld" or "failed".
    previous_revision: of an update, the one that was installed before.
    directory: where it is installed; empty when it is not.
    needed_by: of a removal, the items for which it stays, such as "boards::aurora@2.0, tools::kit@1.0".
    """

    store: str
    name: str
    revision: str
    previous_revision: str
    directory: str
    outcome: str
    needed_by: str = ""


class FilesResult(NamedTuple):
    """How the files of an installed item compare with those of its recorded commit.

    outcome: "whole", "damaged" (some are changed, missing or cannot be read) or "unknown" (nobody knows what they
    should be; a message says why).
    directory: where it is installed. The files are named relative to it.
    additional: files that were not installed. They do no harm.
    """

    store: str
    name: str
    revision: str
    outcome: str
    directory: str
    changed: Tuple[str, ...]
    missing: Tuple[str, ...]
    additional: Tuple[str, ...]
    unreadable: Tuple[str, ...]


class StoreResult(NamedTuple):
    """What became of a store.

    outcome: "refreshed", "outdated", "up-to-date", "unknown" or "failed".
    directory: the store's area.
    items: how many its catalog lists, whatever the number of their revisions.
    """

    store: str
    outcome: str
    directory: str
    items: int
