    def observe(self, callback: Callable[[Entity, str, Any], object], *, below: bool = False) -> Observation:
        """Call callback(object, attribute, key) behind each change of the object, with below of all that it owns too."""
    def snapshot(self) -> Dict[str, Any]:
        """All that is stored in the object and below it as dicts and lists, which do not change any more."""
