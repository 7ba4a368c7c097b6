// Placeholder until the documents layer arrives.
