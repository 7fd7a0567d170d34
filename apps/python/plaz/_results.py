"""What the hub's functions tell."""

from typing import NamedTuple, Optional, Tuple


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


class HistoryChange(NamedTuple):
    """What became of one revision of an item.

    change: "installed", "installed as a dependency", "removed", "updated", "becomes a dependency", "becomes yours",
    "held", "held no more" or "changed". Commits and modes are empty where it was not, or is not, installed.
    """

    store: str
    name: str
    revision: str
    change: str
    commit_before: str
    mode_before: str
    commit_after: str
    mode_after: str


class HistoryEntry(NamedTuple):
    """What one command has made of what is installed.

    command: as a person would write it; empty where it was interrupted, or something else made the changes.
    undone: the number of the entry that it took back, 0 for none; is_part: it could not take back all of it.
    is_undone: another one took it back as a whole.
    """

    number: int
    time: str
    command: str
    undone: int
    is_part: bool
    changes: Tuple[HistoryChange, ...]
    is_undone: bool = False


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


class CatalogChange(NamedTuple):
    """What a refresh would change of what is known of an item.

    change: "new", "changed" (another revision takes its place, or the same one was published anew) or "withdrawn".
    previous_revision: of a change, what is offered now.
    is_installed: whether this revision is installed; in a store that keeps one of each item, whether any is.
    """

    change: str
    name: str
    revision: str
    previous_revision: str
    is_installed: bool


class CatalogChanges(NamedTuple):
    """What a refresh of a store would change.

    url: without secrets, of a store that is new, or is fetched from there from then on.
    previous_commit_id, commit_id: those that the catalog is of, now and then; empty where nothing was fetched.
    subjects: the first lines of the commits between them, the newest first, 20 at most.
    """

    url: str
    previous_commit_id: str
    commit_id: str
    subjects: Tuple[str, ...]
    items: Tuple[CatalogChange, ...]


class StoreResult(NamedTuple):
    """What became of a store.

    outcome: "refreshed", "outdated", "up-to-date", "unknown" or "failed"; with dry_run also "new" and "withdrawn", of
    what the hub would begin, or cease, to list.
    directory: the store's area.
    items: how many its catalog lists, whatever the number of their revisions.
    changes: of a dry run.
    """

    store: str
    outcome: str
    directory: str
    items: int
    changes: Optional[CatalogChanges] = None


class PlannedStep(NamedTuple):
    """What would be done to one item.

    step: "install", "update", "take over" (its files are there already), "restore", "remove", "adopt" (what came for
    others becomes the user's own), "keep" (what the user asked for stays, for others), "hold" or "unhold" (of an undo).
    previous_revision, previous_commit_id: of an update, what is there now.
    needed_by: who needs it then, such as "boards::aurora@2.0, tools::kit@1.0".
    local_directory: where its files are, or will be.
    url: where what comes is fetched from, without secrets.
    size: bytes that come or go; None where that is not known before they are fetched.
    changes: what the change log says beyond that of what is installed.
    """

    step: str
    store: str
    name: str
    revision: str
    commit_id: str
    previous_revision: str
    previous_commit_id: str
    asked_for: bool
    needed_by: str
    local_directory: str
    url: str
    size: Optional[int]
    changes: str


class Category(NamedTuple):
    """A category of a store.

    parent: name of the category above; empty at the top.
    item_count: how many items are in it or below it, whatever the number of their revisions.
    """

    store: str
    name: str
    display_name: str
    description: str
    parent: str
    item_count: int
