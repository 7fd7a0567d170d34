"""Parameters and preferences as mappings."""

from collections.abc import Mapping, MutableMapping

from plaz import _plaz


class Parameters(Mapping):
    """The hub's parameters, for the life of the process.

    Values are str, int or bool; credentials read "***", and are not taken in that form. Deleting one brings its default
    back. Hidden ones are not listed, but can be read, set and deleted. An unknown name raises NotFoundError, a value
    that does not fit ValueError.
    """

    def __getitem__(self, name):
        return _plaz.get_param(name)

    def __setitem__(self, name, value):
        _plaz.set_param(name, value)

    def __delitem__(self, name):
        _plaz.reset_param(name)

    def __iter__(self):
        return iter(_plaz.list_params())

    def __len__(self):
        return len(_plaz.list_params())


class Preferences(MutableMapping):
    """The user's preferences: a list of texts each, in which credentials read "***". Each change is saved at once."""

    def __getitem__(self, name):
        values = _plaz.get_preference(name)
        if not values:
            raise KeyError(name)
        return values

    def __setitem__(self, name, values):
        _plaz.set_preference(name, values)

    def __delitem__(self, name):
        self[name]
        _plaz.set_preference(name, [])

    def __iter__(self):
        return iter(_plaz.list_preferences())

    def __len__(self):
        return len(_plaz.list_preferences())
