export function UploadsScreen() { return null; }
