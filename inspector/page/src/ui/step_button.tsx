// A button with a sign on it, whose name tells the keys that do the same.
interface StepButtonProps {
  label: string;
  text: string;
  keys: string;
  onClick: () => void;
}

export const StepButton = ({ label, text, keys, onClick }: StepButtonProps) => (
  <button type="button" aria-label={label} title={`${label} (${keys})`} onClick={onClick}>
    {text}
  </button>
);
