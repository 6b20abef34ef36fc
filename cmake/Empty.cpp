// Placeholder translation unit for a source folder that has no code yet.
