// Placeholder until the interchange layer arrives.
