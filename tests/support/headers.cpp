// Nothing: the target is there for what it precompiles.
